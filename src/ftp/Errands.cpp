#include "ftp/Errands.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include "ftp/DataChannel.h"
#include "ftp/FtpCommand.h"
#include "ftp/FtpControl.h"
#include "ftp/FtpFailure.h"
#include "ftp/FtpFeatures.h"
#include "ftp/ListingFacts.h"
#include "ftp/ReplyTable.h"
#include "remote/Habits.h"

namespace corvane {
namespace {

using Learned = Habits::Learned;

// Milliseconds in which the reply to a command that was sent ahead comes after the one before it,
// and where it may well have been lost.
constexpr long kPatience = 5'000;
constexpr long kDoubt = 2'000;

constexpr std::string_view kTransfer = "RETR";

// Whether a reply ends a transfer, and nothing that is asked here.
bool IsEnd(int code) {
  return code == 225 || code == 226 || code == 250;
}

}  // namespace

Errands::Errands(Means means, std::string name) : means_(means), name_(std::move(name)) {}

Errands::~Errands() = default;

Errands::Errands(Errands&&) noexcept = default;

std::optional<std::int64_t> Errands::AskSize() {
  if (name_.empty()) return std::nullopt;
  return means_.control.SendCommand("SIZE " + name_).FileStatus();
}

void Errands::Plan(const RemoteFile::Afterwards& wanted, bool wrote) {
  const auto add = [this](What what, std::string line) {
    steps_.push_back({what, std::move(line), nullptr, std::nullopt});
  };
  time_ = wanted.setTime.value_or(0);
  if (wrote && wanted.setTime) {
    if (auto line = TimeCommand(means_.features, name_, time_)) add(What::SetTime, *line);
  }
  if (wanted.askSize && !name_.empty()) add(What::AskSize, "SIZE " + name_);
  if (wanted.askTime && !name_.empty()) {
    if (auto line = AskTimeCommand(means_.features, name_)) add(What::AskTime, *line);
  }
  if (wanted.more && !means_.data.PortCommandAhead().empty())
    add(What::AskPort, std::string(means_.data.PortCommandAhead()));
}

// As long as nothing is known, one command that changes nothing.
std::size_t Errands::FirstAhead(bool wrote) const {
  const std::size_t none = steps_.size();
  if (wrote && means_.habits.waitsForUploads == Learned::Yes) return none;
  switch (means_.habits.takesAhead) {
    case Learned::Yes: return 0;
    case Learned::No: return none;
    case Learned::Unknown: break;
  }
  return none > 0 && steps_.back().what != What::SetTime ? none - 1 : none;
}

void Errands::Send(Step& step, bool ahead) {
  step.reply.reset();
  step.sent =
      std::make_unique<FtpCommand>(means_.control, step.line, std::string_view(),
                                   ahead ? FtpCommand::Order::Ahead : FtpCommand::Order::InTurn);
}

bool Errands::Hear(bool wrote) {
  const long most = trial_ || wrote ? kDoubt : kPatience;
  const std::chrono::milliseconds patience(std::min(most, means_.control.waits.reply));
  for (Step& step : steps_) {
    while (step.sent && !step.sent->IsComplete()) {
      if (!means_.control.ComesWithin(patience)) return false;
      step.reply = step.sent->Next();
    }
  }
  return true;
}

// A port is refused to nobody who had one before, unless it was the wrong moment.
bool Errands::Fits(const Step& step) const {
  const int code = step.reply ? step.reply->code : 0;
  const bool refused = code >= 400 && !means_.control.IsLost();
  switch (step.what) {
    case What::SetTime: return refused || (MayBeReply(step.line, code) && !IsEnd(code));
    case What::AskSize:
    case What::AskTime: return refused || MayBeReply(step.line, code);
    case What::AskPort: return code < 400 && MayBeReply(step.line, code);
  }
  return false;
}

bool Errands::AllFit() const {
  return std::ranges::all_of(steps_, [this](const Step& step) { return !step.sent || Fits(step); });
}

Outcome Errands::End(FtpCommand& transfer, std::optional<std::int64_t> written,
                     const RemoteFile::Afterwards& wanted, RemoteFile::Settled& settled) {
  Plan(wanted, written.has_value());
  // A reply that ended the transfer before its data did was a good one.
  const bool over = transfer.IsComplete();
  const std::size_t first = over ? steps_.size() : FirstAhead(written.has_value());
  const bool ahead = first < steps_.size();
  trial_ = ahead && BeginTrial();
  std::optional<Outcome> verdict;
  Outcome failure = means_.control.Guard([&]() -> Outcome {
    for (std::size_t i = first; i < steps_.size(); ++i) Send(steps_[i], true);
    Reply end;
    while (!transfer.IsComplete()) end = transfer.Next();
    if (!ahead || MayBeReply(kTransfer, end.code))
      verdict = over ? Outcome() : FtpControl::CheckResult(end);
    if (ahead) Judge(end, written, verdict, settled);
    if (name_.empty() && verdict->IsDone()) verdict->server = end.text;
    // No server has a file before it was sent.
    if (over && written && verdict->IsDone() && !MayHave(*written)) {
      verdict = {Outcome::Kind::Busy, 0,
                 Text("The server said that it has the file before all of it was sent.")};
    }
    if (verdict->IsDone()) RunRest(settled);
    return {};
  });
  if (trial_ && failure.kind == Outcome::Kind::Cancelled)
    means_.habits.takesAhead = Learned::Unknown;
  return verdict ? *std::move(verdict) : failure;
}

// A server that does not know SIZE may have any file.
bool Errands::MayHave(std::int64_t size) {
  if (name_.empty()) return true;
  const Reply reply = means_.control.SendCommand("SIZE " + name_);
  return reply.FileStatus() ? *reply.FileStatus() == size : IsUnknownCommand(reply.code);
}

// Meanwhile no other session tries it, and a trial that is not passed needs no further note.
bool Errands::BeginTrial() {
  auto unknown = Learned::Unknown;
  return means_.habits.takesAhead.compare_exchange_strong(unknown, Learned::No);
}

void Errands::Pass() {
  if (std::exchange(trial_, false)) means_.habits.takesAhead = Learned::Yes;
}

// Where the server has looked at a command before an upload was over it may have cut that short:
// its size tells. Some servers read what comes meanwhile and forget it.
void Errands::Judge(const Reply& end, std::optional<std::int64_t> written,
                    std::optional<Outcome>& verdict, RemoteFile::Settled& settled) {
  const bool heard = Hear(written.has_value());
  if (heard && AllFit() && verdict) {
    Pass();
    if (verdict->IsDone()) Take(settled);
    return;
  }
  const Reply found = FindEnd(end);
  GiveUpAhead(written && (!heard || found.text != end.text));
  verdict = FtpControl::CheckResult(found);
  for (Step& step : steps_) step.sent.reset();
  if (!heard) means_.control.SetRight();
  if (!verdict->IsDone() || !written) return;
  const auto size = AskSize();
  if (size && *size != *written)
    verdict = {Outcome::Kind::Busy, 0, Text("The server has %1 of %2 bytes.", *size, *written)};
}

Reply Errands::FindEnd(const Reply& end) const {
  std::vector<const Reply*> all = {&end};
  for (const Step& step : steps_)
    if (step.reply) all.push_back(&*step.reply);
  for (const Reply* reply : all)
    if (IsEnd(reply->code)) return *reply;
  const auto other =
      std::ranges::find_if(all, [](const Reply* r) { return MayBeReply(kTransfer, r->code); });
  return other != all.end() ? **other : end;
}

void Errands::GiveUpAhead(bool onlyWithUploads) {
  if (onlyWithUploads) {
    means_.habits.waitsForUploads = Learned::Yes;
    if (std::exchange(trial_, false)) means_.habits.takesAhead = Learned::Unknown;
    means_.control.UpdateLog("The server looks at commands before an upload has ended.\n");
  } else {
    means_.habits.takesAhead = Learned::No;
    means_.control.UpdateLog("The server does not take commands ahead.\n");
  }
}

void Errands::Take(RemoteFile::Settled& settled) {
  for (Step& step : steps_)
    if (step.reply && !step.settled) TakeOne(step, settled);
}

void Errands::TakeOne(Step& step, RemoteFile::Settled& settled) {
  const Reply& reply = *step.reply;
  step.settled = true;
  step.sent.reset();
  switch (step.what) {
    case What::AskSize: settled.size = reply.FileStatus(); break;
    case What::AskPort: means_.data.TakePortAhead(reply); break;
    case What::AskTime:
      if (reply.code == 213) settled.modified = ReadTimeVal(reply.lastText);
      if (IsUnknownCommand(reply.code)) means_.features.modifiedTime = false;
      break;
    case What::SetTime:
      settled.time = FtpControl::CheckResult(reply, Text("The server cannot set a file's time."));
      if (!IsUnknownCommand(reply.code)) break;
      DropTimeCommand(means_.features);
      if (auto other = TimeCommand(means_.features, name_, time_)) {
        step.line = *std::move(other);
        step.settled = false;
      }
      break;
  }
}

void Errands::RunRest(RemoteFile::Settled& settled) {
  const auto left = std::ranges::count(steps_, false, &Step::settled);
  if (left > 1 && means_.habits.takesAhead != Learned::No) RunTogether(settled);
  for (Step& step : steps_) {
    // A port that is asked for in turn costs the same when it is needed.
    while (!step.settled && step.what != What::AskPort) {
      Send(step, false);
      while (!step.sent->IsComplete()) step.reply = step.sent->Next();
      TakeOne(step, settled);
    }
  }
}

void Errands::RunTogether(RemoteFile::Settled& settled) {
  trial_ = BeginTrial();
  bool ahead = false;
  for (Step& step : steps_) {
    if (!step.settled) Send(step, std::exchange(ahead, true));
  }
  const bool heard = Hear(false);
  if (heard && AllFit()) {
    Pass();
    return Take(settled);
  }
  GiveUpAhead(false);
  for (Step& step : steps_) step.sent.reset();
  if (!heard) means_.control.SetRight();
}

}  // namespace corvane
