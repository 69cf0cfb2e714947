#include "ftp/DataChannel.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <optional>
#include <string>
#include <utility>

#include "ftp/DataPort.h"
#include "ftp/FtpCommand.h"
#include "ftp/FtpControl.h"
#include "ftp/FtpFailure.h"
#include "ftp/Reason.h"
#include "net/NLEndpoint.h"
#include "net/NLException.h"
#include "net/TlsStream.h"
#include "net/Tunnel.h"
#include "remote/Habits.h"

namespace corvane {
namespace {

constexpr long kSlice = 50;             // milliseconds between looks at the control connection
constexpr int kNoDataConnection = 425;  // RFC 959, 4.2
constexpr int kBrokenOff = 426;
constexpr int kBadSequence = 503;

using Learned = Habits::Learned;

// For good, as by a server that does not know the command.
bool IsRefused(const Reply& reply) {
  return reply.code / 100 == 5;
}

bool IsAccepted(const Reply& reply) {
  return reply.IsPreliminary() || reply.IsCompletion();
}

// Ends the waits of one data connection.
class Deadline {
 public:
  explicit Deadline(const FtpControl& control)
      : until_(std::chrono::steady_clock::now() +
               std::chrono::milliseconds(control.waits.connect)) {}

  [[nodiscard]] bool HasPassed() const { return std::chrono::steady_clock::now() > until_; }

 private:
  std::chrono::steady_clock::time_point until_;
};

void ThrowIfInterrupted(const FtpControl& control) {
  if (control.IsInterrupted()) throw FtpFailure{Outcome::Cancelled()};
}

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

DataChannel::DataChannel(FtpControl& control, Habits& habits, bool passive)
    : control_(control), habits_(habits), passive_(passive) {}

DataChannel::~DataChannel() = default;

// An endpoint that comes after an interruption is useless.
void DataChannel::SetEndpoint(std::unique_ptr<NLEndpoint> endpoint) {
  tls_.reset();
  if (endpoint) endpoint->setSilenceLimit(control_.waits.stall);
  const MutexLock hold(reach_);
  endpoint_ = std::move(endpoint);
  if (endpoint_ && control_.IsInterrupted()) endpoint_->abort();
}

// The pointer stays good for the thread that works here: nobody else replaces the endpoint.
NLEndpoint* DataChannel::Endpoint() {
  const MutexLock hold(reach_);
  return endpoint_.get();
}

void DataChannel::SetWatch(std::function<bool(long silence)> watch) {
  Endpoint()->setWatch(std::move(watch));
}

Stream& DataChannel::Connection() {
  if (tls_) return *tls_;
  return *Endpoint();
}

bool DataChannel::WasCut() const {
  return tls_ ? tls_->wasCut() : cut_;
}

bool DataChannel::WentSilent() {
  const NLEndpoint* const endpoint = Endpoint();
  return endpoint != nullptr && endpoint->lastError == ETIMEDOUT;
}

void DataChannel::NoteCareless() {
  if (!std::exchange(careless_, true))
    control_.UpdateLog("The server does not end the encryption of data, and nothing is missing.\n");
}

void DataChannel::Close() {
  if (tls_) cut_ = tls_->wasCut();
  if (tls_ && !control_.IsInterrupted()) tls_->sayEnd();
  SetEndpoint(nullptr);
}

void DataChannel::Abort() {
  const MutexLock hold(reach_);
  if (endpoint_) endpoint_->abort();
}

void DataChannel::Begin() {
  earlyPort_.reset();
  const bool wide = control_.ServerAddress().family() == AF_INET6;
  extendedActive_ = wide;
  // From which family the server sees a proxy come is not known here.
  extendedPassive_ = wide || control_.IsTunnelled();
  if (!control_.IsTunnelled() || std::exchange(passive_, true)) return;
  control_.UpdateLog("Through the proxy all data connections are passive.\n");
}

Outcome DataChannel::SetUp() {
  usesEarlyPort_ = false;
  if (TakeEarlyPort()) return {};
  ChooseWay();
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

void DataChannel::ChooseWay() {
  const Learned own = passive_ ? habits_.passive : habits_.active;
  const Learned other = passive_ ? habits_.active : habits_.passive;
  if (triedBoth_ || control_.IsTunnelled() || own != Learned::No || other != Learned::Yes) return;
  passive_ = !passive_;
}

void DataChannel::WayWorks() {
  onTrial_ = false;
  (passive_ ? habits_.passive : habits_.active) = Learned::Yes;
}

std::string_view DataChannel::PortCommandAhead() const {
  if (!passive_ || onTrial_ || earlyPort_ || habits_.passive != Learned::Yes) return {};
  return extendedPassive_ ? "EPSV" : "PASV";
}

void DataChannel::TakePortAhead(const Reply& reply) {
  if (const auto port = PortIn(reply)) earlyPort_ = {*port, std::chrono::steady_clock::now()};
}

// Servers listen for a while only; what opens no data connection does not change where.
bool DataChannel::TakeEarlyPort() {
  constexpr std::chrono::seconds kFresh(10);
  const auto early = std::exchange(earlyPort_, std::nullopt);
  const bool good = early && passive_ && std::chrono::steady_clock::now() - early->when < kFresh;
  if (!good) return false;
  passivePort_ = early->port;
  usesEarlyPort_ = true;
  SetEndpoint(std::make_unique<NLEndpoint>(NLEndpoint::stream));
  return true;
}

// A port that was asked for ahead may have been the trouble.
bool DataChannel::TryOtherWay() {
  if (noConnection_ && std::exchange(usesEarlyPort_, false)) {
    habits_.takesAhead = Learned::No;
    control_.UpdateLog("The server does not take commands ahead.\n");
    return true;
  }
  if (!noConnection_ || control_.IsTunnelled() || std::exchange(triedBoth_, true)) return false;
  passive_ = !passive_;
  onTrial_ = true;
  control_.UpdateLog(passive_ ? "No data connection; trying passive ones.\n"
                              : "No data connection; trying active ones.\n");
  return true;
}

void DataChannel::WayFailed() {
  noConnection_ = true;
  auto unknown = Learned::Unknown;
  (passive_ ? habits_.passive : habits_.active).compare_exchange_strong(unknown, Learned::No);
  if (std::exchange(onTrial_, false)) passive_ = !passive_;
}

Outcome DataChannel::SetUpActive() {
  constexpr int kBacklog = 5;
  auto listener = std::make_unique<NLEndpoint>(NLEndpoint::stream);
  // Bound where the server already knows this machine: servers refuse a PORT that names another
  // address than the one the control connection comes from.
  listener->bind(control_.LocalAddress().withPort(0));
  listener->listen(kBacklog);
  const NLAddress here = listener->localAddress();
  SetEndpoint(std::move(listener));
  Reply reply =
      control_.SendCommand(extendedActive_ ? ExtendedPortCommand(here) : PortCommand(here));
  if (!extendedActive_ && IsRefused(reply)) {
    const Reply other = control_.SendCommand(ExtendedPortCommand(here));
    extendedActive_ = other.IsCompletion();
    if (extendedActive_) reply = other;
  }
  return FtpControl::CheckResult(reply, Text("The server refuses active connections."));
}

Outcome DataChannel::SetUpPassive() {
  Reply reply = control_.SendCommand(extendedPassive_ ? "EPSV" : "PASV");
  if (IsRefused(reply)) {
    const Reply other = control_.SendCommand(extendedPassive_ ? "PASV" : "EPSV");
    if (other.IsCompletion()) {
      extendedPassive_ = !extendedPassive_;
      reply = other;
    }
  }
  Outcome outcome = FtpControl::CheckResult(reply, Text("The server refuses passive connections."));
  if (!outcome.IsDone()) return outcome;
  const auto port = PortIn(reply);
  if (!port) {
    return {Outcome::Kind::Refused, reply.code,
            Text("The server gave no port for the data connection: %1", reply.lastText)};
  }
  passivePort_ = *port;
  SetEndpoint(std::make_unique<NLEndpoint>(NLEndpoint::stream));
  return outcome;
}

std::optional<std::uint16_t> DataChannel::PortIn(const Reply& reply) const {
  return extendedPassive_ ? ExtendedPort(reply.text) : PassivePort(reply.text);
}

Outcome DataChannel::Open(FtpCommand& command) {
  noConnection_ = false;
  Attempt attempt{command};
  passive_ ? Connect(attempt) : Accept(attempt);
  // What is not open by now never will be: the server gives up, and knows why.
  if (!attempt.open) Close();
  while (!attempt.open && !command.IsComplete()) attempt.Listen();
  const Reply& first = *attempt.first;
  const bool accepted = IsAccepted(first);
  if (attempt.open && accepted) {
    WayWorks();
    return protected_ ? Encrypt(attempt) : Outcome();
  }
  Close();
  if (attempt.localFailure) return Outcome::LocalError(attempt.why);
  if (!accepted) {
    Outcome outcome = FtpControl::CheckResult(first);
    const bool none =
        first.code == kNoDataConnection || (usesEarlyPort_ && first.code == kBadSequence);
    if (none && outcome.trouble != Outcome::Trouble::TooMany) WayFailed();
    return outcome;
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

// A server that refuses the session says so in its reply, which says more than how the handshake
// ended.
Outcome DataChannel::Encrypt(Attempt& attempt) {
  const TlsStream* const control = control_.Encryption();
  Text why("The server does not answer");
  bool done = false;
  cut_ = false;
  tls_ = std::make_unique<TlsStream>(control->context(), *Endpoint());
  tls_->endsTogether = control_.IsTunnelled();
  try {
    done = tls_->handshake(control->host(), control, control_.waits.handshake, [&] {
      ThrowIfInterrupted(control_);
      return !control_.isDataPending(0);
    });
    if (done && tls_->certificate().sha256 == control->certificate().sha256) {
      if (!tls_->isResumed()) control_.UpdateLog("The data connection has a session of its own.\n");
      return {};
    }
    if (done) why = Text("It shows another certificate.");
  } catch (const NLException& error) {
    ThrowIfInterrupted(control_);
    why = Reason(error);
  }
  Close();
  const Text failed("The data connection was not encrypted.");
  while (!attempt.command.IsComplete()) attempt.Listen();
  if (attempt.last.code >= 400) return FtpControl::CheckResult(attempt.last, failed);
  return {Outcome::Kind::Refused, 0, Text::WithReason(failed, why)};
}

void DataChannel::Connect(Attempt& attempt) {
  const Deadline deadline(control_);
  try {
    attempt.open = control_.Join(*Endpoint(), passivePort_, [&] {
      ThrowIfInterrupted(control_);
      if (!control_.isDataPending(0)) return !deadline.HasPassed();
      attempt.Listen();
      return !attempt.command.IsComplete();
    });
    if (!attempt.open) attempt.why = Text("The server does not answer");
  } catch (const TunnelFailure& failure) {
    attempt.why = failure.why;
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
    const auto until = std::chrono::steady_clock::now() + std::chrono::milliseconds(kShort);
    (void)control_.Join(endpoint, passivePort_,
                        [&] { return std::chrono::steady_clock::now() < until; });
  } catch (const NLException&) {
    // Then nobody waits there.
  }
}

// A stranger's connection is closed and the wait goes on; a server that ends the command instead of
// connecting has given up.
void DataChannel::Accept(Attempt& attempt) {
  attempt.Listen();
  if (!IsAccepted(*attempt.first)) return;
  NLEndpoint* listener = Endpoint();
  const Deadline deadline(control_);
  attempt.why = Text("The server did not open the data connection.");
  try {
    for (;;) {
      ThrowIfInterrupted(control_);
      const bool lastLook = attempt.command.IsComplete();
      auto accepted = listener->accept(kSlice);
      if (accepted && accepted->remoteAddress().isSameHost(control_.ServerAddress())) {
        SetEndpoint(std::move(accepted));
        attempt.open = true;
        return;
      }
      // What ends the command may be said once a connection has come that was not seen yet.
      if ((!accepted && lastLook) || deadline.HasPassed()) return;
      if (!lastLook && control_.isDataPending(0)) attempt.Listen();
    }
  } catch (const NLException& error) {
    ThrowIfInterrupted(control_);
    // The listening socket is this machine's alone.
    attempt.localFailure = true;
    attempt.why = Reason(error);
  }
}

}  // namespace corvane
