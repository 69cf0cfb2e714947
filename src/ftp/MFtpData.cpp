#include <arpa/inet.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <optional>
#include <string>
#include <utility>

#include "ftp/MFtp.h"
#include "net/NLException.h"
#include "settings/ProcessSettings.h"

namespace corvane {
namespace {

constexpr long kAcceptSlice = 250;  // milliseconds between looks at the control connection

// The data port of a PASV reply (RFC 959, 4.1.2): the last two of six numbers, each a byte.
std::optional<std::uint16_t> PassivePort(std::string_view reply) {
  const std::size_t open = reply.find('(');
  // Without a parenthesis the numbers stand somewhere behind the code.
  std::string_view rest =
      reply.substr(open == reply.npos ? std::min<std::size_t>(4, reply.size()) : open + 1);
  if (open == reply.npos)
    rest.remove_prefix(std::min(rest.size(), rest.find_first_of("0123456789")));
  std::array<unsigned, 6> numbers{};
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    const auto [end, error] = std::from_chars(rest.data(), rest.data() + rest.size(), numbers[i]);
    if (error != std::errc() || numbers[i] > 255) return std::nullopt;
    rest.remove_prefix(static_cast<std::size_t>(end - rest.data()));
    if (i == 5) break;
    if (!rest.starts_with(',')) return std::nullopt;
    rest.remove_prefix(1);
  }
  const unsigned port = numbers[4] * 256 + numbers[5];
  if (port == 0) return std::nullopt;
  return static_cast<std::uint16_t>(port);
}

// The PORT command for an address and port in host order (RFC 959, 4.1.2).
std::string PortCommand(std::uint32_t host, std::uint16_t port) {
  std::string command = "PORT ";
  for (const std::uint32_t number : {host >> 24, host >> 16 & 255, host >> 8 & 255, host & 255,
                                     std::uint32_t{port} >> 8, std::uint32_t{port} & 255})
    command += std::to_string(number) + ',';
  command.back() = '\n';
  return command;
}

std::uint32_t HostOf(const NLAddress& address) {
  in_addr host{};
  address.get(host, nullptr);
  return host.s_addr;
}

}  // namespace

// Puts a data endpoint where Close and AbortData find it; one that comes too late is useless.
void MFtp::SetDataEndpoint(std::unique_ptr<NLEndpoint> endpoint) {
  if (endpoint) endpoint->setSilenceLimit(silenceLimit);
  MutexLock hold(reach_);
  dataEndpoint_ = std::move(endpoint);
  if (dataEndpoint_ && (aborted_ || Hurried())) dataEndpoint_->abort();
}

// The pointer stays good for the engine's user: nobody else replaces the endpoint.
NLEndpoint* MFtp::DataEndpoint() {
  MutexLock hold(reach_);
  return dataEndpoint_.get();
}

void MFtp::DataCommClose() {
  SetDataEndpoint(nullptr);
}

void MFtp::AbortData() {
  MutexLock hold(reach_);
  if (dataEndpoint_) dataEndpoint_->abort();
}

bool MFtp::SetUpData() {
  return passive_ ? SetUpPassive() != 0 : SetUpActive();
}

bool MFtp::PrepareTransfer() {
  if (!SetUpData()) return false;
  if (binary_ || CheckResult(SendCommand(BINARY)) != 0) return true;
  Fail(lastReplyText_);
  DataCommClose();
  return false;
}

bool MFtp::SetUpActive() {
  constexpr int kBacklog = 5;
  auto listener = std::make_unique<NLEndpoint>(NLEndpoint::stream);
  // Bound where the server already knows this machine: servers refuse a PORT that names another
  // address than the one the control connection comes from.
  in_addr here{};
  controlEndpoint_.localAddress().get(here, nullptr);
  listener->bind(NLAddress(here, 0));
  listener->listen(kBacklog);
  dataAddress_ = listener->localAddress();
  SetDataEndpoint(std::move(listener));

  std::uint16_t port = 0;
  dataAddress_.get(here, &port);
  const int code = SendCommand(PortCommand(ntohl(here.s_addr), port));
  if (code >= 200 && code < 400) return true;
  Fail(lastReplyText_);
  DataCommClose();
  if (lost_) {
    Accepted(code, {});
  } else {
    WarnOfMode("The server refuses active connections.\n\n" + failure_);
  }
  return false;
}

int MFtp::SetUpPassive() {
  const std::string reply = ReturnResponse("PASV\n");
  if (lost_) {
    Accepted(lastCode_, {});
    Fail(lastReplyText_);
    return 0;
  }
  // The address in the reply is of no interest: the data goes to the host of the control
  // connection, which also works behind gateways that rewrite addresses.
  const auto port = ReplyCode(reply, 0) < 400 ? PassivePort(reply) : std::nullopt;
  if (!port) {
    Fail("The server gave no port for the data connection: " + reply);
    WarnOfMode(failure_);
    return 0;
  }
  passivePort_ = *port;
  SetDataEndpoint(std::make_unique<NLEndpoint>(NLEndpoint::stream));
  return 1;
}

// What is said of a data connection that did not come about: the other mode may do better.
void MFtp::WarnOfMode(std::string_view text) {
  if (!browser_) return;
  Message warning("GERR"_what);
  warning.AddString("warning", text);
  warning.AddBool("passive", passive_);
  browser_->PostMessage(std::move(warning));
}

// Sends a command that moves data and opens the data connection for it. After Open and Failed the
// command is to be ended with FinishData; a refused one has ended, its code in lastCode_, and the
// data connection still waits.
MFtp::DataState MFtp::OpenData(const std::string& command, std::string_view logged,
                               const std::atomic<bool>& cancelled) {
  completionDue_ = false;
  lastCode_ = 0;
  if (!passive_) {
    if (!JudgePreliminary(SendCommand(command))) return DataState::Refused;
    return AcceptData(cancelled) ? DataState::Open : DataState::Failed;
  }
  if (!IsOneLine(command)) return DataState::Refused;
  UpdateLog(logged);
  SendLine(command);
  std::string failure;
  try {
    ConnectData();
  } catch (const NLException& error) {
    failure = Reason(error);
    if (Hurried()) ConnectInVain();
  }
  if (!JudgePreliminary(ReadResponse())) return DataState::Refused;
  if (failure.empty()) return DataState::Open;
  Fail("No data connection: " + failure);
  return DataState::Failed;
}

// A 2yz in place of the preliminary reply is all that the server will say.
bool MFtp::JudgePreliminary(int code) {
  completionDue_ = code >= 100 && code < 200;
  if (code >= 100 && code < 300) return true;
  if (code != 0) Fail(lastReplyText_);
  return false;
}

void MFtp::ConnectData() {
  NLEndpoint* endpoint = DataEndpoint();
  if (endpoint == nullptr) throw NLException("MFtp::ConnectData", "No data connection was set up");
  // serverAddress_ is the proxy's where one is used; only its port differs.
  in_addr host{};
  serverAddress_.get(host, nullptr);
  endpoint->connect(NLAddress(host, passivePort_));
}

// A server whose data connection was cancelled before it stood waits for it, for a minute or more,
// and answers nothing meanwhile.
void MFtp::ConnectInVain() const {
  constexpr long kShort = 300;
  try {
    NLEndpoint endpoint(NLEndpoint::stream);
    endpoint.setSilenceLimit(kShort);
    in_addr host{};
    serverAddress_.get(host, nullptr);
    endpoint.connect(NLAddress(host, passivePort_));
  } catch (const NLException&) {
    // Then there is nobody who waits.
  }
}

// Takes the server's connection on the listening endpoint. A stranger's connection is closed and
// the wait goes on; a server that speaks instead of connecting has given up.
bool MFtp::AcceptData(const std::atomic<bool>& cancelled) {
  NLEndpoint* listener = DataEndpoint();
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(silenceLimit);
  try {
    bool spoke = false;
    while (listener != nullptr && !cancelled && !aborted_) {
      auto accepted = listener->accept(spoke ? 1 : kAcceptSlice);
      if (accepted && HostOf(accepted->remoteAddress()) == HostOf(serverAddress_)) {
        SetDataEndpoint(std::move(accepted));
        return true;
      }
      // What it said may be the end of a transfer whose connection has come meanwhile: one more
      // look.
      const bool gaveUp = spoke && !accepted;
      spoke = controlEndpoint_.isDataPending(1);
      if (gaveUp || std::chrono::steady_clock::now() > deadline) {
        Fail("The server did not open the data connection.");
        return false;
      }
    }
    Fail("Cancelled.");
  } catch (const NLException& error) {
    FailFrom(error);
  }
  return false;
}

// A refused command is over: no reply is owed, and nobody will use its data connection.
void MFtp::DropRefused() {
  constexpr int kNoDataConnection = 425;  // RFC 959, 4.2
  if (lastCode_ == kNoDataConnection) {
    WarnOfMode("The server refused the request.\n\n" + lastReplyText_);
  } else if (lastCode_ != 0) {
    Accepted(lastCode_, "The server refused the request.");
  }
  DataCommClose();
}

// Ends the command in hand: closes the data connection first, for some servers wait for that before
// they answer, then reads and judges the completion reply.
bool MFtp::FinishData() {
  DataCommClose();
  if (!completionDue_) return true;
  completionDue_ = false;
  const int code = ReadResponse();
  if (code >= 200 && code < 300) return true;
  Fail(lastReplyText_);
  return false;
}

}  // namespace corvane
