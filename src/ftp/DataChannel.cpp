#include "ftp/DataChannel.h"

#include <arpa/inet.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <optional>
#include <string>
#include <utility>

#include "ftp/FtpControl.h"
#include "ftp/FtpFailure.h"
#include "net/NLEndpoint.h"
#include "net/NLException.h"

namespace corvane {
namespace {

constexpr long kSlice = 50;             // milliseconds between looks at the control connection
constexpr long kMostPatience = 30'000;  // milliseconds for a data connection to come about
constexpr int kNoDataConnection = 425;  // RFC 959, 4.2
constexpr int kBrokenOff = 426;

bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

// Six numbers with commas between them at the front of `text`; nothing where there are none.
std::optional<std::array<unsigned, 6>> SixNumbers(std::string_view text) {
  std::array<unsigned, 6> numbers{};
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    if (i > 0) {
      const std::size_t comma = std::min(text.find_first_not_of(' '), text.size());
      if (!text.substr(comma).starts_with(',')) return std::nullopt;
      text.remove_prefix(comma + 1);
      text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
    }
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), numbers[i]);
    if (error != std::errc()) return std::nullopt;
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
  }
  return numbers;
}

// The data port of a PASV reply (RFC 959, 4.1.2): the last two of six numbers, each a byte,
// wherever they stand behind the code.
std::optional<std::uint16_t> PassivePort(std::string_view reply) {
  for (std::size_t at = 4; at < reply.size(); ++at) {
    if (!IsDigit(reply[at]) || IsDigit(reply[at - 1])) continue;
    const auto numbers = SixNumbers(reply.substr(at));
    if (!numbers) continue;
    if (std::ranges::any_of(*numbers, [](unsigned number) { return number > 255; })) break;
    const unsigned port = (*numbers)[4] * 256 + (*numbers)[5];
    return port == 0 ? std::nullopt : std::optional(static_cast<std::uint16_t>(port));
  }
  return std::nullopt;
}

// The PORT command for an address and port in host order (RFC 959, 4.1.2).
std::string PortCommand(std::uint32_t host, std::uint16_t port) {
  std::string command = "PORT ";
  for (const std::uint32_t number : {host >> 24, host >> 16 & 255, host >> 8 & 255, host & 255,
                                     std::uint32_t{port} >> 8, std::uint32_t{port} & 255})
    command += std::to_string(number) + ',';
  command.pop_back();
  return command;
}

in_addr HostOf(const NLAddress& address) {
  in_addr host{};
  address.get(host, nullptr);
  return host;
}

// Ends the waits of one data connection.
class Deadline {
 public:
  explicit Deadline(const FtpControl& control)
      : control_(control),
        until_(std::chrono::steady_clock::now() +
               std::chrono::milliseconds(std::min(control.silenceLimit, kMostPatience))) {}

  [[nodiscard]] bool HasPassed() const { return std::chrono::steady_clock::now() > until_; }
  void ThrowIfInterrupted() const {
    if (control_.IsInterrupted()) throw FtpFailure{Outcome::Cancelled()};
  }

 private:
  const FtpControl& control_;
  std::chrono::steady_clock::time_point until_;
};

}  // namespace

// How the data connection of one command comes about.
struct DataChannel::Attempt {
  FtpCommand& command;
  std::optional<Reply> first{};
  Reply last{};
  bool open = false;
  bool localFailure = false;
  Text why{};  // of what failed on this side

  void Listen() {
    last = command.Next();
    if (!first) first = last;
  }
};

DataChannel::DataChannel(FtpControl& control, bool passive)
    : control_(control), passive_(passive) {}

DataChannel::~DataChannel() = default;

// An endpoint that comes after an interruption is useless.
void DataChannel::SetEndpoint(std::unique_ptr<NLEndpoint> endpoint) {
  if (endpoint) endpoint->setSilenceLimit(control_.silenceLimit);
  const MutexLock hold(reach_);
  endpoint_ = std::move(endpoint);
  if (endpoint_ && control_.IsInterrupted()) endpoint_->abort();
}

// The pointer stays good for the thread that works here: nobody else replaces the endpoint.
NLEndpoint* DataChannel::Endpoint() {
  const MutexLock hold(reach_);
  return endpoint_.get();
}

Stream& DataChannel::Connection() {
  return *Endpoint();
}

void DataChannel::Close() {
  SetEndpoint(nullptr);
}

void DataChannel::Abort() {
  const MutexLock hold(reach_);
  if (endpoint_) endpoint_->abort();
}

Outcome DataChannel::SetUp() {
  Outcome outcome = SetUpThisWay();
  if (outcome.kind != Outcome::Kind::Refused && outcome.kind != Outcome::Kind::Busy) return outcome;
  WayFailed();
  if (!TryOtherWay()) return outcome;
  Outcome other = SetUpThisWay();
  if (other.IsDone()) return other;
  WayFailed();
  return outcome;
}

Outcome DataChannel::SetUpThisWay() {
  return passive_ ? SetUpPassive() : SetUpActive();
}

bool DataChannel::TryOtherWay() {
  if (!noConnection_ || std::exchange(triedBoth_, true)) return false;
  passive_ = !passive_;
  onTrial_ = true;
  control_.UpdateLog(passive_ ? "No data connection; trying passive ones.\n"
                              : "No data connection; trying active ones.\n");
  return true;
}

void DataChannel::WayFailed() {
  noConnection_ = true;
  if (std::exchange(onTrial_, false)) passive_ = !passive_;
}

Outcome DataChannel::SetUpActive() {
  constexpr int kBacklog = 5;
  auto listener = std::make_unique<NLEndpoint>(NLEndpoint::stream);
  // Bound where the server already knows this machine: servers refuse a PORT that names another
  // address than the one the control connection comes from.
  listener->bind(NLAddress(HostOf(control_.LocalAddress()), 0));
  listener->listen(kBacklog);
  in_addr here{};
  std::uint16_t port = 0;
  listener->localAddress().get(here, &port);
  SetEndpoint(std::move(listener));
  return FtpControl::CheckResult(control_.SendCommand(PortCommand(ntohl(here.s_addr), port)),
                                 Text("The server refuses active connections."));
}

Outcome DataChannel::SetUpPassive() {
  const Reply reply = control_.SendCommand("PASV");
  Outcome outcome = FtpControl::CheckResult(reply, Text("The server refuses passive connections."));
  if (!outcome.IsDone()) return outcome;
  const auto port = PassivePort(reply.text);
  if (!port) {
    return {Outcome::Kind::Refused, reply.code,
            Text("The server gave no port for the data connection: %1", reply.lastText)};
  }
  passivePort_ = *port;
  SetEndpoint(std::make_unique<NLEndpoint>(NLEndpoint::stream));
  return outcome;
}

Outcome DataChannel::Open(FtpCommand& command) {
  noConnection_ = false;
  Attempt attempt{command};
  passive_ ? Connect(attempt) : Accept(attempt);
  // What is not open by now never will be: the server gives up, and knows why.
  if (!attempt.open) Close();
  while (!attempt.open && !command.IsComplete()) attempt.Listen();
  const Reply& first = *attempt.first;
  const bool accepted = first.code >= 100 && first.code < 300;
  if (attempt.open && accepted) {
    onTrial_ = false;
    return {};
  }
  Close();
  if (attempt.localFailure) return Outcome::LocalError(attempt.why);
  if (!accepted) {
    if (first.code == kNoDataConnection) WayFailed();
    return FtpControl::CheckResult(first);
  }
  const Text failed =
      passive_ ? Text("Passive connection failed.") : Text("Active connection failed.");
  // One that broke off had come about, even where that was too soon to be seen here.
  if (attempt.last.code != kBrokenOff) WayFailed();
  if (attempt.last.code >= 400) {
    Outcome outcome = FtpControl::CheckResult(attempt.last, failed);
    if (outcome.kind == Outcome::Kind::Refused) outcome.kind = Outcome::Kind::Busy;
    return outcome;
  }
  return {Outcome::Kind::Busy, kNoDataConnection, Text::WithReason(failed, attempt.why)};
}

void DataChannel::Connect(Attempt& attempt) {
  const Deadline deadline(control_);
  try {
    attempt.open =
        Endpoint()->connectWhile(NLAddress(HostOf(control_.ServerAddress()), passivePort_), [&] {
          deadline.ThrowIfInterrupted();
          if (!control_.isDataPending(0)) return !deadline.HasPassed();
          attempt.Listen();
          return !attempt.command.IsComplete();
        });
    if (!attempt.open) attempt.why = Text("The server does not answer");
  } catch (const NLException& error) {
    attempt.why = Reason(error);
  } catch (const FtpFailure&) {
    if (control_.IsInterrupted()) ConnectInVain();
    throw;
  }
  if (control_.IsInterrupted()) {
    ConnectInVain();
    throw FtpFailure{Outcome::Cancelled()};
  }
  if (!attempt.first) attempt.Listen();
}

// A server whose data connection was cancelled before it stood waits for it, for a minute or more,
// and says nothing meanwhile.
void DataChannel::ConnectInVain() {
  constexpr long kShort = 300;
  if (control_.IsLost()) return;
  try {
    NLEndpoint endpoint(NLEndpoint::stream);
    endpoint.setSilenceLimit(kShort);
    endpoint.connect(NLAddress(HostOf(control_.ServerAddress()), passivePort_));
  } catch (const NLException&) {
    // Then nobody waits there.
  }
}

// A stranger's connection is closed and the wait goes on; a server that ends the command instead of
// connecting has given up.
void DataChannel::Accept(Attempt& attempt) {
  attempt.Listen();
  if (attempt.first->code >= 300) return;
  NLEndpoint* listener = Endpoint();
  const Deadline deadline(control_);
  attempt.why = Text("The server did not open the data connection.");
  try {
    for (;;) {
      deadline.ThrowIfInterrupted();
      const bool lastLook = attempt.command.IsComplete();
      auto accepted = listener->accept(kSlice);
      if (accepted &&
          HostOf(accepted->remoteAddress()).s_addr == HostOf(control_.ServerAddress()).s_addr) {
        SetEndpoint(std::move(accepted));
        attempt.open = true;
        return;
      }
      // What ends the command may be said once a connection has come that was not seen yet.
      if ((!accepted && lastLook) || deadline.HasPassed()) return;
      if (!lastLook && control_.isDataPending(0)) attempt.Listen();
    }
  } catch (const NLException& error) {
    deadline.ThrowIfInterrupted();
    // The listening socket is this machine's alone.
    attempt.localFailure = true;
    attempt.why = Reason(error);
  }
}

}  // namespace corvane
