#include "ftp/FtpControl.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <utility>

#include "ftp/FtpCommand.h"
#include "ftp/FtpFailure.h"
#include "ftp/Reason.h"
#include "ftp/ReplyTable.h"
#include "net/NLEndpoint.h"
#include "net/NLException.h"
#include "net/TlsStream.h"

namespace corvane {
namespace {

constexpr int kGone = 421;
constexpr std::chrono::seconds kSoon(2);

FtpFailure Lost(const Text& why, Outcome::Trouble trouble) {
  return {{Outcome::Kind::Lost, 0, why, {}, trouble}};
}

}  // namespace

FtpControl::FtpControl(std::function<void(std::string_view)> log) : log_(std::move(log)) {}

FtpControl::~FtpControl() = default;

void FtpControl::Connect(std::span<const NLAddress> addresses, std::optional<Tunnel> tunnel,
                         std::uint16_t port) {
  GiveUp(Text("The connection is closed"));
  tls_.reset();
  auto endpoint = std::make_unique<NLEndpoint>(NLEndpoint::stream);
  endpointHere_ = endpoint.get();
  {
    const MutexLock hold(reach_);
    endpoint_ = std::move(endpoint);
    if (closed_) endpoint_->abort();
  }
  ReadFrom(*endpointHere_);
  tunnel_ = std::move(tunnel);
  heard_ = 0;
  endpointHere_->setSilenceLimit(waits.reply);
  if (!JoinFirst(addresses, port)) throw FtpFailure{Outcome::Cancelled()};
  endpointHere_->setKeepAlive();
  endpointHere_->setNoDelay();
  lost_ = false;
  loss_ = {};
  spoken_ = std::chrono::steady_clock::now();
}

bool FtpControl::JoinFirst(std::span<const NLAddress> addresses, std::uint16_t port) {
  using Trouble = Outcome::Trouble;
  const auto goOn = [this] { return !interrupted_.load(); };
  try {
    if (!endpointHere_->connectFirst(addresses, waits.connect, goOn)) return false;
  } catch (const NLException& error) {
    if (tunnel_) throw Lost(Text("The proxy cannot be reached: %1", Reason(error)), Trouble::Other);
    const int number = endpointHere_->lastError;
    throw Lost(Reason(error), number == ECONNREFUSED ? Trouble::RefusedPort
                              : number == ECONNRESET ? Trouble::Other
                                                     : Trouble::NoAnswer);
  }
  server_ = endpointHere_->remoteAddress();
  try {
    return Pass(*endpointHere_, port, goOn);
  } catch (const TunnelFailure& failure) {
    throw Lost(failure.why, failure.portClosed ? Trouble::RefusedPort : Trouble::Other);
  }
}

bool FtpControl::Join(NLEndpoint& endpoint, std::uint16_t port,
                      const std::function<bool()>& goOn) const {
  const std::array way = {tunnel_ ? server_ : server_.withPort(port)};
  if (!endpoint.connectFirst(way, waits.connect, goOn)) return false;
  return Pass(endpoint, port, goOn);
}

bool FtpControl::Pass(NLEndpoint& endpoint, std::uint16_t port,
                      const std::function<bool()>& goOn) const {
  return !tunnel_ || tunnel_->open(endpoint, port, waits.reply, goOn);
}

Stream& FtpControl::Wire() {
  if (tls_) return *tls_;
  return *endpointHere_;
}

void FtpControl::ReadFrom(Stream& stream) {
  replies_ = std::make_unique<ReplyReader>(stream, interrupted_);
  replies_->silenceLimit = waits.reply;
}

// A server that has agreed to encrypt waits for this end to begin: bytes that are there already
// were put in by somebody who wants them to be taken for encrypted ones.
void FtpControl::Encrypt(std::shared_ptr<const TlsContext> context, const std::string& host) {
  const auto fail = [this](const Text& why) {
    GiveUp(why);
    throw FtpFailure{{Outcome::Kind::Lost, 0, why, {}, Outcome::Trouble::NoEncryption}};
  };
  try {
    const bool agreed = heard_ > 0;
    if (agreed && (replies_->IsAhead() || endpointHere_->wait(0)))
      fail(
          Text("Something came before the encryption had begun, as it does when somebody stands "
               "between you and the server."));
    auto tls = std::make_unique<TlsStream>(std::move(context), *endpointHere_);
    const bool done =
        tls->handshake(host, nullptr, waits.handshake, [this] { return !IsInterrupted(); });
    if (!done) throw FtpFailure{Outcome::Cancelled()};
    tls_ = std::move(tls);
    ReadFrom(*tls_);
  } catch (const NLException& error) {
    if (IsInterrupted()) throw FtpFailure{Outcome::Cancelled()};
    fail(Text::WithReason(Text("The encryption did not come about."), Reason(error)));
  }
}

void FtpControl::SayEnd() {
  if (tls_ && !lost_) tls_->sayEnd();
}

Reply FtpControl::SendCommand(std::string_view command) {
  return FtpCommand(*this, command).Next();
}

Reply FtpControl::SendPassword(std::string_view command) {
  return FtpCommand(*this, command, command.substr(0, command.find(' '))).Next();
}

Reply FtpControl::SendChange(std::string_view command) {
  return FtpCommand(*this, command, {}, FtpCommand::Order::InTurn, FtpCommand::Effect::Change)
      .Next();
}

Reply FtpControl::SendSlow(std::string_view command, long milliseconds) {
  FtpCommand sent(*this, command);
  replies_->silenceLimit = waits.reply + milliseconds;
  const auto usual = [this] { replies_->silenceLimit = waits.reply; };
  try {
    Reply reply = sent.Next();
    while (!sent.IsComplete()) reply = sent.Next();
    usual();
    return reply;
  } catch (const FtpFailure&) {
    usual();
    throw;
  }
}

Reply FtpControl::ReadResponse() {
  std::optional<Reply> reply = TryRead();
  if (!reply) throw FtpFailure{Outcome::Cancelled()};
  return *std::move(reply);
}

bool FtpControl::IsLine(std::string_view text) {
  constexpr std::string_view kForbidden("\r\n\0", 3);
  return text.find_first_of(kForbidden) == std::string_view::npos;
}

void FtpControl::CheckLine(std::string_view text) {
  if (IsLine(text)) return;
  throw FtpFailure{
      Outcome::LocalError(Text("A name or text with a line break cannot be sent to the server."))};
}

void FtpControl::CheckReady(std::string_view command) const {
  CheckLine(command);
  if (lost_) throw FtpFailure{{Outcome::Kind::Lost, 0, loss_.why}};
  if (IsInterrupted()) throw FtpFailure{Outcome::Cancelled()};
}

void FtpControl::Write(std::string_view command, std::string_view logged, bool gathers) {
  heard_ = 0;
  spoken_ = std::chrono::steady_clock::now();
  UpdateLog(std::string(logged.empty() ? command : logged) + "\n");
  gathered_ += std::string(command) + "\r\n";
  if (!gathers) Flush();
}

void FtpControl::Flush() {
  if (gathered_.empty()) return;
  try {
    Wire().write(std::exchange(gathered_, {}));
  } catch (const NLException& error) {
    Lose(Reason(error));
  }
}

void FtpControl::ReadUnread() {
  // The completion follows a preliminary reply.
  while (!underWay_.empty() && ComesWithin(kSoon)) (void)ReadResponse();
  if (!underWay_.empty()) SetRight();
  ReadUnasked();
  if (IsInterrupted()) throw FtpFailure{Outcome::Cancelled()};
  // A server that said good-bye unasked is gone.
  if (lost_) throw FtpFailure{{Outcome::Kind::Lost, 0, loss_.why}};
}

bool FtpControl::ComesWithin(std::chrono::milliseconds limit) {
  using std::chrono::steady_clock;
  constexpr long kSlice = 50;
  const auto deadline = steady_clock::now() + limit;
  while (!isDataPending(kSlice)) {
    if (IsInterrupted()) throw FtpFailure{Outcome::Cancelled()};
    if (steady_clock::now() > deadline) return false;
  }
  return true;
}

// Not every server says how a transfer ended that was broken off. The reply to NOOP, which is none
// that ends a transfer, shows that nothing more is to come. Where commands were sent ahead, the
// reply of any of them may look like it: then everything is read that can come, one reply to each
// at most.
void FtpControl::SetRight() {
  constexpr std::array kEndTransfers = {225, 226, 250, 425, 426, 450, 451, 452, 550, 551, 552, 553};
  const bool anyAhead = std::ranges::any_of(underWay_, &UnderWay::ahead);
  std::size_t left = underWay_.size() + 1;
  Write("NOOP", {}, false);
  do {
    const Reply reply = ReadResponse();
    if (reply.IsPreliminary()) continue;
    --left;
    if (!anyAhead && std::ranges::count(kEndTransfers, reply.code) == 0) break;
  } while (!anyAhead || (left > 0 && ComesWithin(kSoon)));
  if (anyAhead && left > 0) FindEnd(left);
  for (const UnderWay& over : underWay_)
    if (over.command != nullptr) over.command->complete_ = true;
  underWay_.clear();
}

// A slow server and one that has lost commands look alike. The reply to PWD is none to any of them:
// what comes before it belongs to what was sent before.
void FtpControl::FindEnd(std::size_t most) {
  constexpr int kPath = 257;
  const Text why("The server is out of step");
  bool found = false;
  const auto asksPath = [](const UnderWay& one) { return MayBeReply(one.verb, kPath); };
  if (std::ranges::none_of(underWay_, asksPath)) {
    Write("PWD", {}, false);
    bool known = true;
    for (std::size_t i = 0; i <= most && known && !found; ++i) {
      const int code = ReadResponse().code;
      found = code == kPath;
      known = code != 500 && code != 502;
    }
  }
  if (!found) Lose(why);
}

// A reply that nobody waited for is not unasked, though it is read here where it has come.
void FtpControl::ReadUnasked() {
  unasked_ = underWay_.empty();
  try {
    while (!lost_ && TryRead(&ReplyReader::ReadUnasked)) continue;
  } catch (const FtpFailure&) {
    unasked_ = false;
    throw;
  }
  unasked_ = false;
}

bool FtpControl::IsAlive() {
  if (!lost_) (void)Guard([this]() -> Outcome { return ReadUnasked(), Outcome(); });
  return !lost_;
}

// From the last command or answer until the server was last heard, which is about when it closed.
std::optional<std::chrono::seconds> FtpControl::Idle() const {
  using namespace std::chrono;
  constexpr seconds kLeast(2);
  if (!unasked_ || closed_) return std::nullopt;
  const auto idle = steady_clock::now() - spoken_ - milliseconds(endpointHere_->sinceHeard());
  if (idle < kLeast) return std::nullopt;
  return duration_cast<seconds>(idle);
}

std::optional<Reply> FtpControl::TryRead(Reading read) {
  constexpr int kMostReplies = 1000;
  if (lost_) throw FtpFailure{{Outcome::Kind::Lost, 0, loss_.why}};
  Flush();
  try {
    std::optional<Reply> reply =
        std::invoke(read, *replies_, [this](std::string_view line) { UpdateLog(line); });
    if (reply && ++heard_ > kMostReplies) Lose(Text("The server does not stop replying"));
    if (!reply) return reply;
    Deliver(*reply);
    if (reply->code == kGone) {
      GiveUp(Text::Raw(reply->Words()));
    } else if (!unasked_) {
      ++answers_;
      spoken_ = std::chrono::steady_clock::now();
    }
    return reply;
  } catch (const FtpFailure& failure) {
    GiveUp(failure.outcome.text);
    throw;
  } catch (const NLException& error) {
    Lose(Reason(error));
  }
}

void FtpControl::Deliver(const Reply& reply) {
  if (underWay_.empty() || reply.IsPreliminary()) return;
  if (FtpCommand* const command = underWay_.front().command) command->complete_ = true;
  underWay_.pop_front();
}

void FtpControl::Lose(Text why) {
  GiveUp(why);
  throw FtpFailure{{closed_ ? Outcome::Kind::Cancelled : Outcome::Kind::Lost, 0, std::move(why)}};
}

void FtpControl::GiveUp(const Text& why) {
  if (std::exchange(lost_, true)) return;
  loss_ = {why, Idle(), std::ranges::any_of(underWay_, &UnderWay::changes)};
  underWay_.clear();
  gathered_.clear();
  endpointHere_->close();
}

Outcome FtpControl::Guard(const std::function<Outcome()>& work) {
  try {
    return work();
  } catch (const FtpFailure& failure) {
    return failure.outcome;
  } catch (const NLException& error) {
    // The control connection's own have been told apart already: this one is of a data connection.
    return Outcome::LocalError(Reason(error));
  } catch (const std::exception& error) {
    return Outcome::LocalError(Text("The request could not be carried out: %1", error.what()));
  }
}

bool FtpControl::isDataPending(long milliseconds) {
  if (lost_) return false;
  Flush();
  try {
    return replies_->IsPending(milliseconds);
  } catch (const NLException& error) {
    Lose(Reason(error));
  }
}

const NLAddress& FtpControl::LocalAddress() const {
  return endpointHere_->localAddress();
}

void FtpControl::Close() {
  closed_ = true;
  const MutexLock hold(reach_);
  if (endpoint_) endpoint_->abort();
}

}  // namespace corvane
