#include <chrono>
#include <utility>

#include "ftp/FtpCommand.h"
#include "ftp/FtpControl.h"
#include "ftp/ReplyTable.h"

namespace corvane {
namespace {

constexpr std::chrono::milliseconds kMoment(700);  // in which what belongs together arrives
constexpr std::string_view kProbe = "NOOP";

}  // namespace

Reply FtpControl::ReadGreeting() {
  constexpr int kSoonReady = 120;
  Reply reply = ReadResponse();
  const bool later = reply.code == kSoonReady;
  if (later) reply = ReadResponse();
  if (later && reply.code == kSoonReady)
    Lose(Text("The server says again and again that it will be ready later: %1", reply.Words()));
  if (!lost_ && !MayBeReply(kGreeting, reply.code))
    Lose(
        Text::WithReason(Text("The server is out of step"), Text::Raw(WithoutLineEnd(reply.text))));
  return reply;
}

// An old reply has the command's own right behind it. Where none comes this was all, as the reply
// to NOOP shows; a reply that may be either's is NOOP's unless another one follows.
Reply FtpControl::Realign(FtpCommand& command, const UnderWay& asked, Reply odd) {
  const std::pair habit(asked.verb, odd.code);
  const auto none = [&] {
    odd.code = 0;
    return odd;
  };
  if (oddHabits_.contains(habit)) return none();
  UpdateLog("That is no reply to " + asked.verb + ".\n");
  const auto await = [&] {
    if (underWay_.empty()) underWay_.push_back(asked);
    command.complete_ = false;
  };
  const auto isOwn = [&](const Reply& reply) {
    return lost_ || MayBeReply(asked.verb, reply.code);
  };
  for (await(); ComesWithin(kMoment); await()) {
    Reply reply = ReadResponse();
    if (isOwn(reply)) return reply;
  }
  Write(kProbe, {}, false);
  Reply reply = ReadResponse();
  for (; !isOwn(reply) && !MayBeReply(kProbe, reply.code); reply = ReadResponse()) await();
  const bool own = isOwn(reply);
  if (own && (lost_ || !MayBeReply(kProbe, reply.code) || ComesWithin(kMoment))) {
    if (!lost_) underWay_.push_back({.verb = std::string(kProbe)});
    return reply;
  }
  underWay_.clear();
  command.complete_ = true;
  if (!odd.IsPreliminary()) oddHabits_.insert(habit);
  return none();
}

}  // namespace corvane
