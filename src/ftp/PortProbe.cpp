#include "ftp/PortProbe.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <utility>

#include "net/HostName.h"
#include "net/NLEndpoint.h"
#include "net/NLException.h"
#include "net/TlsContext.h"
#include "net/TlsStream.h"

namespace corvane {
namespace {

// What comes first within `patience`; empty where nothing does.
std::string FirstBytes(NLEndpoint& endpoint, long patience, const std::function<bool()>& goOn) {
  using std::chrono::steady_clock;
  constexpr long kSlice = 50;
  const auto until = steady_clock::now() + std::chrono::milliseconds(patience);
  while (goOn() && steady_clock::now() < until) {
    if (!endpoint.wait(kSlice)) continue;
    std::array<char, 512> block{};
    return {block.data(), endpoint.read(block)};
  }
  return {};
}

}  // namespace

PortProbe::PortProbe(std::vector<NLAddress> addresses, std::optional<Tunnel> tunnel,
                     std::function<bool()> goOn)
    : addresses_(std::move(addresses)), tunnel_(std::move(tunnel)), goOn_(std::move(goOn)) {}

PortProbe::Behind PortProbe::Service(const std::string& line) {
  if (line.empty()) return Behind::Mute;
  if (line.starts_with("SSH-")) return Behind::Ssh;
  if (line.starts_with("HTTP/") || line.starts_with("<")) return Behind::Web;
  const bool greets = line.size() > 3 && (line[3] == ' ' || line[3] == '-') &&
                      (line[0] == '2' || line[0] == '4' || line[0] == '1' || line[0] == '5');
  return greets ? Behind::Ftp : Behind::Strange;
}

bool PortProbe::Connect(NLEndpoint& endpoint, std::uint16_t port, long patience) const {
  endpoint.setSilenceLimit(patience);
  std::vector<NLAddress> ways = addresses_;
  if (!tunnel_) {
    for (NLAddress& way : ways) way = way.withPort(port);
  }
  if (!endpoint.connectFirst(ways, patience, goOn_)) return false;
  return !tunnel_ || tunnel_->open(endpoint, port, patience, goOn_);
}

bool PortProbe::IsOpen(std::uint16_t port, long patience) const {
  try {
    NLEndpoint endpoint(NLEndpoint::stream);
    return Connect(endpoint, port, patience);
  } catch (const NLException&) {
    return false;
  }
}

PortProbe::Behind PortProbe::Listen(std::uint16_t port, long patience) const {
  NLEndpoint endpoint(NLEndpoint::stream);
  bool open = false;
  try {
    open = Connect(endpoint, port, patience);
    return open ? Service(FirstBytes(endpoint, patience, goOn_)) : Behind::Silent;
  } catch (const NLException&) {
    if (open) return Behind::Mute;
    return endpoint.lastError == ECONNREFUSED ? Behind::Closed : Behind::Silent;
  }
}

PortProbe::Behind PortProbe::Look(std::uint16_t port, const std::string& host,
                                  long patience) const {
  const Behind unasked = Listen(port, patience);
  if (unasked != Behind::Mute) return unasked;
  if (Encrypts(port, host, patience)) return Behind::Tls;
  return SpeaksHttp(port, patience) ? Behind::Web : Behind::Mute;
}

bool PortProbe::Encrypts(std::uint16_t port, const std::string& host, long patience) const {
  try {
    NLEndpoint endpoint(NLEndpoint::stream);
    if (!Connect(endpoint, port, patience)) return false;
    TlsStream tls(TlsContext::usual(), endpoint);
    return tls.handshake(asciiHost(host), nullptr, patience, goOn_);
  } catch (const NLException&) {
    return false;
  }
}

// Such a server speaks only once it was asked for something.
bool PortProbe::SpeaksHttp(std::uint16_t port, long patience) const {
  try {
    NLEndpoint endpoint(NLEndpoint::stream);
    if (!Connect(endpoint, port, patience)) return false;
    static_cast<Stream&>(endpoint).write(std::string_view("OPTIONS * HTTP/1.0\r\n\r\n"));
    return Service(FirstBytes(endpoint, patience, goOn_)) == Behind::Web;
  } catch (const NLException&) {
    return false;
  }
}

}  // namespace corvane
