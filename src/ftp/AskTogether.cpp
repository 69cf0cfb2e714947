#include "ftp/AskTogether.h"

#include <algorithm>
#include <chrono>
#include <memory>
#include <utility>

#include "ftp/FtpCommand.h"
#include "ftp/FtpControl.h"
#include "ftp/FtpFailure.h"
#include "ftp/ReplyTable.h"
#include "remote/Habits.h"

namespace corvane {
namespace {

using Learned = Habits::Learned;

// Milliseconds in which the reply to a command that was sent ahead comes after the one before it.
constexpr long kPatience = 5'000;
constexpr long kDoubt = 2'000;  // the same where it may well have been lost

// A port is refused to nobody who had one before, unless it was the wrong moment. A directory may
// be refused for any reason.
bool Fits(std::string_view question, int code) {
  const bool forPort = question == "PASV" || question == "EPSV";
  const bool mayRefuse = question.starts_with("CWD") || (!forPort && IsPlainRefusal(code));
  return MayBeReply(question, code) && (code < 400 || mayRefuse);
}

// False where a reply stays away, or is none to its command.
bool Hear(FtpControl& control, const std::vector<std::string>& questions, bool trial,
          std::vector<Reply>& replies) {
  const std::chrono::milliseconds patience(
      std::min(trial ? kDoubt : kPatience, control.waits.reply));
  std::vector<std::unique_ptr<FtpCommand>> sent;
  for (const std::string& question : questions) {
    const auto order = sent.empty() ? FtpCommand::Order::InTurn : FtpCommand::Order::Ahead;
    sent.push_back(std::make_unique<FtpCommand>(control, question, std::string_view(), order));
  }
  bool fits = true;
  for (std::size_t i = 0; i < sent.size(); ++i) {
    if (i > 0 && !control.ComesWithin(patience)) {
      control.SetRight();
      return false;
    }
    Reply reply = sent[i]->Next();
    while (!sent[i]->IsComplete()) reply = sent[i]->Next();
    fits = fits && Fits(questions[i], reply.code);
    replies.push_back(std::move(reply));
  }
  return fits;
}

}  // namespace

bool IsPlainRefusal(int code) {
  constexpr int kBadSequence = 503;
  return code >= 500 && code != kBadSequence;
}

bool TryTogether(FtpControl& control, Habits& habits, const std::vector<std::string>& questions,
                 bool mayTry, std::vector<Reply>& replies) {
  replies.clear();
  if (questions.size() < 2) return false;
  // Meanwhile no other session tries it.
  auto before = Learned::Unknown;
  const bool trial = mayTry && habits.takesAhead.compare_exchange_strong(before, Learned::No);
  if (!trial && habits.takesAhead != Learned::Yes) return false;
  try {
    if (Hear(control, questions, trial, replies)) {
      if (trial) habits.takesAhead = Learned::Yes;
      return true;
    }
  } catch (const FtpFailure& failure) {
    if (trial && failure.outcome.kind == Outcome::Kind::Cancelled)
      habits.takesAhead = Learned::Unknown;
    throw;
  }
  habits.takesAhead = Learned::No;
  control.UpdateLog("The server does not take commands ahead.\n");
  return false;
}

std::vector<Reply> AskTogether(FtpControl& control, Habits& habits,
                               const std::vector<std::string>& questions, bool mayTry) {
  std::vector<Reply> replies;
  if (TryTogether(control, habits, questions, mayTry, replies)) return replies;
  replies.clear();
  for (const std::string& question : questions) replies.push_back(control.SendCommand(question));
  return replies;
}

}  // namespace corvane
