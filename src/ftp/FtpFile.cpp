#include "ftp/FtpFile.h"

#include <algorithm>
#include <chrono>
#include <optional>
#include <utility>

#include "ftp/DataChannel.h"
#include "ftp/FtpCommand.h"
#include "ftp/FtpControl.h"
#include "ftp/FtpFailure.h"
#include "ftp/Reason.h"
#include "net/NLException.h"
#include "net/Stream.h"

namespace corvane {

FtpFile::FtpFile(FtpControl& control, DataChannel& data, std::unique_ptr<FtpCommand> command,
                 std::int64_t offset, bool writes, Errands errands)
    : control_(control),
      data_(data),
      command_(std::move(command)),
      offset_(offset),
      writes_(writes),
      errands_(std::move(errands)) {
  data_.SetWatch([this](long silence) { return GoesOn(silence); });
}

FtpFile::~FtpFile() {
  if (ended_) return;
  broken_ = true;
  Settled settled;
  (void)Verdict({}, settled);
}

Outcome FtpFile::Read(std::span<char> buffer, std::size_t& got) {
  got = 0;
  if (ended_) return Outcome::Cancelled();
  if (IsQuiet()) {
    silent_ = true;
    return BrokenOff(Text("The server does not answer"));
  }
  try {
    got = data_.Connection().read(buffer);
    moved_ += static_cast<std::int64_t>(got);
    return {};
  } catch (const NLException& error) {
    return BrokenOff(Reason(error));
  }
}

bool FtpFile::IsQuiet() const {
  return quiet_ >= control_.waits.stall;
}

// While no data moves, the server may say why none will. Where it says that all is well, what is
// still on its way comes soon.
bool FtpFile::GoesOn(long silence) {
  const long rest = std::min(30'000L, control_.waits.stall);
  try {
    while (!stopped_ && !command_->IsComplete() && control_.isDataPending(0)) {
      Reply reply = command_->Next();
      if (command_->IsComplete()) early_ = std::move(reply);
    }
  } catch (const FtpFailure&) {
    stopped_ = true;
  }
  const bool refused = early_ && !early_->IsCompletion();
  stopped_ = stopped_ || refused || control_.IsLost() || (command_->IsComplete() && silence > rest);
  return !stopped_;
}

bool FtpFile::Wait(long milliseconds) {
  try {
    if (ended_ || IsQuiet()) return true;
    const bool came = data_.Connection().wait(milliseconds);
    quiet_ = came ? 0 : quiet_ + milliseconds;
    return came || !GoesOn(quiet_);
  } catch (const NLException&) {
    return true;  // the next Read tells
  }
}

Outcome FtpFile::Write(std::span<const char> bytes) {
  if (ended_) return Outcome::Cancelled();
  try {
    data_.Connection().write(bytes);
    moved_ += static_cast<std::int64_t>(bytes.size());
    return {};
  } catch (const NLException& error) {
    return BrokenOff(Reason(error));
  }
}

// Where the data broke off the server mostly knows why, as when its disk is full.
Outcome FtpFile::BrokenOff(const Text& why) {
  broken_ = true;
  silent_ = silent_ || data_.WentSilent();
  Settled settled;
  Outcome verdict = Verdict({}, settled);
  const Text open("The server says that this is all, and keeps the data connection open.");
  return verdict.IsDone() ? Outcome{Outcome::Kind::Busy, 0, early_ ? open : why} : verdict;
}

Outcome FtpFile::Finish(const Afterwards& wanted, Settled& settled) {
  settled = {};
  if (ended_) return Outcome::Cancelled();
  if (writes_) {
    try {
      data_.Connection().finish();
    } catch (const NLException& error) {
      return BrokenOff(Reason(error));
    }
  }
  return Verdict(wanted, settled);
}

// Closes the data connection first, for some servers wait for that before they say how it ended.
Outcome FtpFile::Verdict(const Afterwards& wanted, Settled& settled) {
  ended_ = true;
  data_.Close();
  // Let go of at the end: a reply that is still unread is then the control connection's to read.
  const std::unique_ptr<FtpCommand> command = std::move(command_);
  return control_.Guard([&]() -> Outcome {
    if (control_.IsInterrupted()) {
      command->Hurry();
      return Outcome::Cancelled();
    }
    if (broken_) return HearWhy(*command);
    if (early_ && !early_->IsCompletion()) return FtpControl::CheckResult(*early_);
    const auto written = writes_ ? std::optional(offset_ + moved_) : std::nullopt;
    Outcome outcome = errands_.End(*command, written, wanted, settled);
    return outcome.IsDone() && !writes_ && data_.WasCut() ? JudgeCut() : outcome;
  });
}

// A server that has been silent for long on the data connection is not waited for so long again.
Outcome FtpFile::HearWhy(FtpCommand& command) {
  constexpr std::chrono::seconds kMoment(2);
  Outcome outcome = early_ ? FtpControl::CheckResult(*early_) : Outcome();
  while (!command.IsComplete()) {
    if (silent_ && !control_.ComesWithin(kMoment)) {
      const Text why("The server does not answer");
      control_.GiveUp(why);
      return {Outcome::Kind::Lost, 0, why, {}, Outcome::Trouble::NoAnswer};
    }
    outcome = FtpControl::CheckResult(command.Next());
  }
  return outcome;
}

// Somebody on the way can end a connection early, but not forge the size that comes encrypted.
Outcome FtpFile::JudgeCut() {
  if (errands_.AskSize() == offset_ + moved_) return data_.NoteCareless(), Outcome();
  return {Outcome::Kind::Busy, 0, Text("The data ended without a word that it was all.")};
}

}  // namespace corvane
