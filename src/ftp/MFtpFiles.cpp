#include <algorithm>
#include <chrono>
#include <utility>
#include <vector>

#include "ftp/FtpCommand.h"
#include "ftp/FtpFailure.h"
#include "ftp/MFtp.h"
#include "ftp/ReplyTable.h"
#include "remote/Permissions.h"
#include "remote/RemotePath.h"

namespace corvane {
namespace {

using Learned = Habits::Learned;

constexpr std::size_t kMostAhead = 32;
constexpr int kUnavailable = 550;
constexpr int kBadArguments = 501;  // these two concern one entry
constexpr int kBadSequence = 503;
constexpr int kSuperfluous = 202;  // "command not implemented, superfluous at this site"

bool Ends(const Outcome& outcome) {
  return outcome.kind == Outcome::Kind::Lost || outcome.kind == Outcome::Kind::Cancelled;
}

}  // namespace

Outcome MFtp::RemoveFiles(std::span<const std::string> paths,
                          const std::function<bool(std::size_t, const Outcome&)>& each) {
  // It may have been removed the first time.
  const auto again = [this](const std::string& command, const std::string& name) -> Outcome {
    const Reply reply = control_.SendChange(command);
    if (reply.code == kUnavailable && control_.SendCommand("SIZE " + name).code == kUnavailable)
      return {};
    return FtpControl::CheckResult(reply);
  };
  return CarryOut({.count = paths.size(),
                   .path = [paths](std::size_t i) -> const std::string& { return paths[i]; },
                   .verb = [](std::size_t) { return std::string("DELE "); },
                   .again = again,
                   .judge = [](const Reply& reply) { return FtpControl::CheckResult(reply); }},
                  each);
}

// Servers name what they know of SITE in many ways, or not at all: the first that it does not know
// tells. One that has changed an entry knows how.
Outcome MFtp::ChangeModes(std::span<const ModeChange> changes,
                          const std::function<bool(std::size_t, const Outcome&)>& each) {
  Outcome cannot{Outcome::Kind::Refused, 0, Text("This server cannot change permissions.")};
  std::optional<Outcome> end;
  const auto judge = [&](const Reply& reply) -> Outcome {
    const bool unknown =
        reply.code == kSuperfluous ||
        (IsUnknownCommand(reply.code) && reply.code != kBadArguments && reply.code != kBadSequence);
    if (modes_ == Learned::Unknown && unknown) {
      modes_ = Learned::No;
      end = cannot;
      end->code = reply.code;
      end->server = std::to_string(reply.code) + " " + std::string(reply.Words());
      end->text = Text::WithReason(cannot.text, Text::Raw(std::string(reply.Words())));
      return *end;
    }
    if (reply.IsCompletion()) modes_ = Learned::Yes;
    return FtpControl::CheckResult(reply);
  };
  if (control_.IsLost()) return {Outcome::Kind::Lost, 0, control_.HowLost().why};
  if (modes_ == Learned::No) return cannot;
  const auto again = [&](const std::string& command, const std::string&) {
    return judge(control_.SendChange(command));
  };
  const auto tell = [&](std::size_t i, const Outcome& outcome) { return !end && each(i, outcome); };
  Outcome outcome =
      CarryOut({.count = changes.size(),
                .path = [changes](std::size_t i) -> const std::string& { return changes[i].path; },
                .verb =
                    [changes](std::size_t i) {
                      return "SITE CHMOD " + Permissions::Octal(changes[i].mode) + " ";
                    },
                .again = again,
                .judge = judge},
               tell);
  return end ? *end : outcome;
}

Outcome MFtp::CarryOut(const ManyChanges& changes,
                       const std::function<bool(std::size_t, const Outcome&)>& each) {
  std::size_t next = 0;
  Outcome last;
  bool more = true;
  const auto tell = [&](const Outcome& outcome) {
    last = outcome;
    more = each(next++, outcome) && !Ends(outcome);
    return more;
  };
  while (more && next < changes.count) {
    const Outcome failure = control_.Guard(
        [&] { return ChangeTogether(changes, next, CountTogether(changes, next), tell); });
    if (more && !failure.IsDone()) tell(failure);
  }
  return more ? Outcome() : last;
}

// One that cannot be sent is tried alone, so that its failure is its own.
std::size_t MFtp::CountTogether(const ManyChanges& changes, std::size_t first) const {
  const Learned learned = habits_->takesAhead;
  const std::size_t most = learned == Learned::Yes ? kMostAhead : learned == Learned::No ? 1 : 2;
  const std::string directory = SplitPath(changes.path(first)).first;
  std::size_t count = 0;
  while (count < std::min(most, changes.count - first)) {
    const std::string& path = changes.path(first + count);
    if (!FtpControl::IsLine(path) || SplitPath(path).first != directory) break;
    ++count;
  }
  return std::max<std::size_t>(count, 1);
}

// What was answered before a failure is told all the same.
Outcome MFtp::ChangeTogether(const ManyChanges& changes, std::size_t first, std::size_t count,
                             const std::function<bool(const Outcome&)>& tell) {
  if (Outcome there = GoTo(SplitPath(changes.path(first)).first); !there.IsDone()) return there;
  auto unknown = Learned::Unknown;
  const bool trial = count > 1 && habits_->takesAhead.compare_exchange_strong(unknown, Learned::No);
  std::vector<std::string> commands;
  for (std::size_t i = first; i < first + count; ++i)
    commands.push_back(changes.verb(i) + SplitPath(changes.path(i)).second);
  std::vector<Reply> replies;
  try {
    const bool fits = HearChanges(commands, trial, replies);
    if (trial && fits && !control_.IsLost()) habits_->takesAhead = Learned::Yes;
    if (!fits && count > 1) {
      habits_->takesAhead = Learned::No;
      control_.UpdateLog("The server does not take commands ahead.\n");
      replies.resize(MayBeReply(commands.front(), replies.front().code) ? 1 : 0);
    }
  } catch (const FtpFailure& failure) {
    if (trial && failure.outcome.kind == Outcome::Kind::Cancelled)
      habits_->takesAhead = Learned::Unknown;
    for (const Reply& reply : replies)
      if (!tell(changes.judge(reply))) return {};
    throw;
  }
  for (const Reply& reply : replies)
    if (!tell(changes.judge(reply))) return {};
  for (std::size_t i = replies.size(); i < count; ++i)
    if (!tell(changes.again(commands[i], SplitPath(changes.path(first + i)).second))) return {};
  return {};
}

// False where a reply stays away, or is none to this command. Which of the replies belongs to which
// command is not known then, but for the first.
bool MFtp::HearChanges(std::span<const std::string> commands, bool trial,
                       std::vector<Reply>& replies) {
  const std::chrono::milliseconds patience(
      std::min(trial ? 5'000L : 30'000L, control_.waits.reply));
  std::vector<std::unique_ptr<FtpCommand>> sent;
  for (const std::string& line : commands) {
    const auto order = sent.empty() ? FtpCommand::Order::InTurn : FtpCommand::Order::Ahead;
    sent.push_back(std::make_unique<FtpCommand>(control_, line, std::string_view(), order,
                                                FtpCommand::Effect::Change));
  }
  bool fits = true;
  for (const auto& command : sent) {
    if (!replies.empty() && !control_.ComesWithin(patience)) {
      control_.SetRight();
      return false;
    }
    Reply reply = command->Next();
    while (!command->IsComplete()) reply = command->Next();
    fits = fits && MayBeReply(commands[replies.size()], reply.code) &&
           (replies.empty() || !IsUnknownCommand(reply.code) || reply.code == replies.front().code);
    replies.push_back(std::move(reply));
  }
  return fits;
}

// A way that the server refuses is not offered again.
// A server that reads less than a megabyte a second is not waited for.
Outcome MFtp::Checksum(const std::string& path, std::int64_t size, DigestKind kind,
                       std::string& digest) {
  constexpr std::int64_t kBytesInOne = 1000;  // millisecond
  constexpr std::int64_t kHour = 3'600'000;
  const std::int64_t slow = size < 0 ? kHour : std::min(size / kBytesInOne, 24 * kHour);
  digest.clear();
  const Text failed("The server makes no checksum of the file.");
  return control_.Guard([&]() -> Outcome {
    const auto found = std::ranges::find(features_.digests, kind, &DigestWay::kind);
    const auto [directory, name] = SplitPath(path);
    if (found == features_.digests.end()) return {Outcome::Kind::Refused, 0, failed};
    const DigestWay way = *found;
    const auto command = DigestCommand(way, name);
    if (!command) return {Outcome::Kind::Refused, 0, failed};
    if (Outcome there = GoTo(directory); !there.IsDone()) return there;
    const auto drop = [&] { std::erase(features_.digests, way); };
    if (way.verb == "HASH" && hashKind_ != kind) {
      const Reply reply = control_.SendCommand("OPTS HASH " + std::string(HashName(kind)));
      hashKind_ = reply.IsCompletion() ? kind : DigestKind::None;
      if (Outcome chosen = FtpControl::CheckResult(reply, failed); !chosen.IsDone())
        return drop(), chosen;
    }
    const Reply reply = control_.SendSlow(*command, static_cast<long>(slow));
    Outcome outcome = FtpControl::CheckResult(reply, failed);
    if (outcome.kind == Outcome::Kind::Refused && reply.code != kUnavailable) drop();
    if (!outcome.IsDone()) return outcome;
    const auto told = ReadDigest(way, reply.lastText);
    if (!told) return drop(), Outcome{Outcome::Kind::Refused, reply.code, failed};
    digest = *told;
    return outcome;
  });
}

}  // namespace corvane
