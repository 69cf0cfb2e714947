#include <algorithm>
#include <chrono>
#include <utility>
#include <vector>

#include "ftp/FtpCommand.h"
#include "ftp/FtpFailure.h"
#include "ftp/MFtp.h"
#include "remote/RemotePath.h"

namespace corvane {
namespace {

using Learned = Habits::Learned;

constexpr std::size_t kMostAhead = 32;
constexpr int kUnavailable = 550;

bool Ends(const Outcome& outcome) {
  return outcome.kind == Outcome::Kind::Lost || outcome.kind == Outcome::Kind::Cancelled;
}

}  // namespace

Outcome MFtp::RemoveFiles(std::span<const std::string> paths,
                          const std::function<bool(std::size_t, const Outcome&)>& each) {
  std::size_t next = 0;
  Outcome last;
  bool more = true;
  const auto tell = [&](const Outcome& outcome) {
    last = outcome;
    more = each(next++, outcome) && !Ends(outcome);
    return more;
  };
  while (more && next < paths.size()) {
    const auto left = paths.subspan(next);
    const Outcome failure =
        control_.Guard([&] { return RemoveTogether(left.first(CountTogether(left)), tell); });
    if (more && !failure.IsDone()) tell(failure);
  }
  return more ? Outcome() : last;
}

// One that cannot be sent is tried alone, so that its failure is its own.
std::size_t MFtp::CountTogether(std::span<const std::string> paths) const {
  const Learned learned = habits_->takesAhead;
  const std::size_t most = learned == Learned::Yes ? kMostAhead : learned == Learned::No ? 1 : 2;
  const std::string directory = SplitPath(paths.front()).first;
  std::size_t count = 0;
  while (count < std::min(most, paths.size()) && FtpControl::IsLine(paths[count]) &&
         SplitPath(paths[count]).first == directory)
    ++count;
  return std::max<std::size_t>(count, 1);
}

// What was answered before a failure is told all the same.
Outcome MFtp::RemoveTogether(std::span<const std::string> paths,
                             const std::function<bool(const Outcome&)>& tell) {
  if (Outcome there = GoTo(SplitPath(paths.front()).first); !there.IsDone()) return there;
  auto unknown = Learned::Unknown;
  const bool trial =
      paths.size() > 1 && habits_->takesAhead.compare_exchange_strong(unknown, Learned::No);
  std::vector<Reply> replies;
  try {
    const bool fits = HearRemovals(paths, trial, replies);
    if (trial && fits && !control_.IsLost()) habits_->takesAhead = Learned::Yes;
    if (!fits) {
      habits_->takesAhead = Learned::No;
      control_.UpdateLog("The server does not take commands ahead.\n");
      replies.resize(1);
    }
  } catch (const FtpFailure& failure) {
    if (trial && failure.outcome.kind == Outcome::Kind::Cancelled)
      habits_->takesAhead = Learned::Unknown;
    for (const Reply& reply : replies)
      if (!tell(FtpControl::CheckResult(reply))) return {};
    throw;
  }
  for (const Reply& reply : replies)
    if (!tell(FtpControl::CheckResult(reply))) return {};
  for (const std::string& path : paths.subspan(replies.size()))
    if (!tell(RemoveAgain(SplitPath(path).second))) return {};
  return {};
}

// False where a reply stays away, or is none to this command. Which of the replies belongs to which
// command is not known then, but for the first.
bool MFtp::HearRemovals(std::span<const std::string> paths, bool trial,
                        std::vector<Reply>& replies) {
  const std::chrono::milliseconds patience(
      std::min(trial ? 5'000L : 30'000L, control_.silenceLimit));
  std::vector<std::unique_ptr<FtpCommand>> sent;
  for (const std::string& path : paths) {
    const auto order = sent.empty() ? FtpCommand::Order::InTurn : FtpCommand::Order::Ahead;
    sent.push_back(std::make_unique<FtpCommand>(control_, "DELE " + SplitPath(path).second,
                                                std::string_view(), order,
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
    fits = fits &&
           (replies.empty() || !IsUnknownCommand(reply.code) || reply.code == replies.front().code);
    replies.push_back(std::move(reply));
  }
  return fits;
}

// It may have been removed the first time.
Outcome MFtp::RemoveAgain(const std::string& name) {
  const Reply reply = control_.SendChange("DELE " + name);
  if (reply.code == kUnavailable && control_.SendCommand("SIZE " + name).code == kUnavailable)
    return {};
  return FtpControl::CheckResult(reply);
}

// A way that the server refuses is not offered again.
Outcome MFtp::Checksum(const std::string& path, DigestKind kind, std::string& digest) {
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
    const Reply reply = control_.SendSlow(*command);
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
