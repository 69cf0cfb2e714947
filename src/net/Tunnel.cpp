#include "net/Tunnel.h"

#include <arpa/inet.h>

#include <algorithm>
#include <charconv>
#include <chrono>
#include <string_view>
#include <utility>

#include "net/HostName.h"
#include "net/Stream.h"

namespace corvane {
namespace {

constexpr std::size_t kMostHeaders = std::size_t{8} * 1024;
constexpr std::size_t kMostText = 255;  // of what SOCKS gives a length of one byte

struct Stopped {};

// The proxy's words, read byte by byte: what follows them is the server's.
class Conversation {
 public:
  Conversation(Stream& stream, long limit, const std::function<bool()>& goOn)
      : stream_(stream),
        until_(std::chrono::steady_clock::now() + std::chrono::milliseconds(limit)),
        goOn_(goOn) {}

  void say(std::string_view bytes) { stream_.write(bytes); }

  char hear() {
    constexpr long kSlice = 50;
    while (!stream_.wait(kSlice)) {
      if (goOn_ && !goOn_()) throw Stopped();
      if (std::chrono::steady_clock::now() > until_)
        throw TunnelFailure(Text("The proxy does not answer."));
    }
    char byte = 0;
    if (stream_.read({&byte, 1}) == 1) return byte;
    throw TunnelFailure(Text("The proxy has closed the connection."));
  }

  std::string hear(std::size_t count) {
    std::string bytes;
    while (bytes.size() < count) bytes += hear();
    return bytes;
  }

 private:
  Stream& stream_;
  const std::chrono::steady_clock::time_point until_;
  const std::function<bool()>& goOn_;
};

Text NoProxy(const char* kind) {
  return Text("What answers there is no %1 proxy.", kind);
}

Text RefusedUser(const std::string& user) {
  return user.empty() ? Text("The proxy wants a user name and a password.")
                      : Text("The proxy refuses the user name or the password.");
}

Text NotLetThrough() {
  return Text("The proxy does not let this connection through.");
}

Text NotReached() {
  return Text("The proxy cannot find or reach the server.");
}

// SOCKS 5.

char Byte(std::size_t number) {
  return static_cast<char>(static_cast<unsigned char>(number));
}

std::string Counted(const std::string& text) {
  if (text.size() > kMostText)
    throw TunnelFailure(Text("A name or password is too long for the proxy."));
  return Byte(text.size()) + text;
}

// RFC 1928, 5: an address as such, a name for the proxy to look up.
std::string SocksAddress(const std::string& host) {
  in_addr quad{};
  in6_addr wide{};
  const std::string bare = host.substr(0, host.find('%'));
  if (::inet_pton(AF_INET, host.c_str(), &quad) == 1)
    return '\1' + std::string(reinterpret_cast<const char*>(&quad), sizeof quad);
  if (::inet_pton(AF_INET6, bare.c_str(), &wide) == 1)
    return '\4' + std::string(reinterpret_cast<const char*>(&wide), sizeof wide);
  return '\3' + Counted(host);
}

void IdentifyToSocks(Conversation& proxy, const Tunnel& tunnel) {
  constexpr char kNobody = 0;
  constexpr char kUser = 2;
  const std::string login = "\1" + Counted(tunnel.user) + Counted(tunnel.password);
  std::string methods(1, kNobody);
  if (!tunnel.user.empty()) methods += kUser;
  proxy.say("\5" + Counted(methods));
  if (proxy.hear() != '\5') throw TunnelFailure(NoProxy("SOCKS5"));
  const char method = proxy.hear();
  if (method == kNobody) return;
  if (method == Byte(0xFF)) throw TunnelFailure(RefusedUser(tunnel.user));
  if (methods.find(method) == std::string::npos) throw TunnelFailure(NoProxy("SOCKS5"));
  proxy.say(login);
  if (proxy.hear(2)[1] != 0) throw TunnelFailure(RefusedUser(tunnel.user));
}

// RFC 1928, 6.
void JudgeSocks(unsigned char reply) {
  switch (reply) {
    case 0: return;
    case 1: throw TunnelFailure(Text("The proxy could not connect, and gives no reason."));
    case 2: throw TunnelFailure(NotLetThrough());
    case 3:
    case 4:
    case 6: throw TunnelFailure(NotReached());
    case 5: throw TunnelFailure(Text("The server refuses the connection from the proxy."), true);
    case 7:
    case 8: throw TunnelFailure(Text("The proxy does not make connections of this kind."));
    default: throw TunnelFailure(Text("The proxy refuses with the code %1.", unsigned{reply}));
  }
}

void OpenSocks(Conversation& proxy, const Tunnel& tunnel, std::uint16_t port) {
  const std::string address = SocksAddress(asciiHost(tunnel.host));
  IdentifyToSocks(proxy, tunnel);
  proxy.say(std::string("\5\1\0", 3) + address + Byte(port >> 8) + Byte(port & 0xFF));
  if (proxy.hear() != '\5') throw TunnelFailure(NoProxy("SOCKS5"));
  JudgeSocks(static_cast<unsigned char>(proxy.hear()));
  (void)proxy.hear();
  constexpr std::size_t kPort = 2;
  // Where the proxy connects from, of a length that its kind tells.
  switch (proxy.hear()) {
    case 1: (void)proxy.hear(sizeof(in_addr) + kPort); return;
    case 3: (void)proxy.hear(static_cast<unsigned char>(proxy.hear()) + kPort); return;
    case 4: (void)proxy.hear(sizeof(in6_addr) + kPort); return;
    default: throw TunnelFailure(NoProxy("SOCKS5"));
  }
}

// HTTP.

std::string Base64(std::string_view bytes) {
  constexpr std::string_view kDigits =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string text;
  for (std::size_t at = 0; at < bytes.size(); at += 3) {
    const std::string_view three = bytes.substr(at, 3);
    unsigned bits = 0;
    for (std::size_t i = 0; i < 3; ++i)
      bits = bits << 8 | (i < three.size() ? static_cast<unsigned char>(three[i]) : 0U);
    for (std::size_t i = 0; i < 4; ++i)
      text += i <= three.size() ? kDigits[bits >> (18 - 6 * i) & 63] : '=';
  }
  return text;
}

std::string ConnectRequest(const Tunnel& tunnel, std::uint16_t port) {
  std::string host = asciiHost(tunnel.host);
  if (host.find(':') != std::string::npos) host = "[" + host.substr(0, host.find('%')) + "]";
  const std::string target = host + ":" + std::to_string(port);
  std::string request = "CONNECT " + target + " HTTP/1.1\r\nHost: " + target + "\r\n";
  if (!tunnel.user.empty())
    request += "Proxy-Authorization: Basic " + Base64(tunnel.user + ":" + tunnel.password) + "\r\n";
  return request + "\r\n";
}

// The status line of one response; its headers are passed over. `left` bounds what is read.
std::string HearStatus(Conversation& proxy, std::size_t& left) {
  std::string status;
  std::string line;
  while (line != "\r\n" && line != "\n") {
    line.clear();
    while (!line.ends_with('\n')) {
      if (left-- == 0) throw TunnelFailure(NoProxy("HTTP"));
      line += proxy.hear();
      // Anything else may go on for ever, or wait for a command of its own.
      if (status.empty() && !line.starts_with(std::string_view("HTTP/").substr(0, line.size())))
        throw TunnelFailure(NoProxy("HTTP"));
    }
    if (status.empty()) status = line;
  }
  return status;
}

// RFC 9110, 15.
void JudgeHttp(int code, const std::string& words, const std::string& user) {
  switch (code) {
    case 401:
    case 407: throw TunnelFailure(RefusedUser(user));
    case 403: throw TunnelFailure(NotLetThrough());
    case 500:
    case 502:
    case 503:
    case 504: throw TunnelFailure(NotReached());
    case 400:
    case 404:
    case 405:
    case 501: throw TunnelFailure(Text("The proxy does not make connections of this kind."));
    default: throw TunnelFailure(Text("The proxy refuses: %1", words));
  }
}

void OpenHttp(Conversation& proxy, const Tunnel& tunnel, std::uint16_t port) {
  proxy.say(ConnectRequest(tunnel, port));
  std::size_t left = kMostHeaders;
  for (;;) {
    const std::string status = HearStatus(proxy, left);
    const std::size_t blank = std::min(status.find(' '), status.size());
    const std::string words = status.substr(blank, status.find_first_of("\r\n") - blank);
    int code = 0;
    if (!words.empty()) std::from_chars(words.data() + 1, words.data() + words.size(), code);
    if (code < 100 || code > 599) throw TunnelFailure(NoProxy("HTTP"));
    if (code / 100 == 2) return;
    if (code / 100 != 1) JudgeHttp(code, words.substr(1), tunnel.user);
  }
}

}  // namespace

TunnelFailure::TunnelFailure(corvane::Text sentence, bool isPortClosed)
    : NLException("Tunnel::open()", sentence.English()),
      why(std::move(sentence)),
      portClosed(isPortClosed) {}

bool Tunnel::open(Stream& stream, std::uint16_t port, long limit,
                  const std::function<bool()>& goOn) const {
  const auto isOdd = [](char c) { return static_cast<unsigned char>(c) <= ' ' || c == 0x7F; };
  if (host.empty() || std::ranges::any_of(host, isOdd))
    throw TunnelFailure(Text("The server's name cannot be sent to the proxy."));
  Conversation proxy(stream, limit, goOn);
  try {
    kind == Kind::socks5 ? OpenSocks(proxy, *this, port) : OpenHttp(proxy, *this, port);
    return true;
  } catch (const Stopped&) {
    return false;
  }
}

}  // namespace corvane
