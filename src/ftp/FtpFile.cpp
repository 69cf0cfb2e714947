#include "ftp/FtpFile.h"

#include <utility>

#include "ftp/DataChannel.h"
#include "ftp/FtpControl.h"
#include "ftp/Reason.h"
#include "net/NLException.h"
#include "net/Stream.h"

namespace corvane {

FtpFile::FtpFile(FtpControl& control, DataChannel& data, std::unique_ptr<FtpCommand> command,
                 std::int64_t offset, AskSize size)
    : control_(control),
      data_(data),
      command_(std::move(command)),
      offset_(offset),
      size_(std::move(size)) {}

FtpFile::~FtpFile() {
  if (!ended_) (void)Verdict();
}

Outcome FtpFile::Read(std::span<char> buffer, std::size_t& got) {
  got = 0;
  if (ended_) return Outcome::Cancelled();
  try {
    got = data_.Connection().read(buffer);
    received_ += static_cast<std::int64_t>(got);
    return {};
  } catch (const NLException& error) {
    return BrokenOff(Reason(error));
  }
}

bool FtpFile::Wait(long milliseconds) {
  try {
    return ended_ || data_.Connection().wait(milliseconds);
  } catch (const NLException&) {
    return true;  // the next Read tells
  }
}

Outcome FtpFile::Write(std::span<const char> bytes) {
  if (ended_) return Outcome::Cancelled();
  wrote_ = true;
  try {
    data_.Connection().write(bytes);
    return {};
  } catch (const NLException& error) {
    return BrokenOff(Reason(error));
  }
}

// Where the data broke off the server mostly knows why, as when its disk is full.
Outcome FtpFile::BrokenOff(const Text& why) {
  Outcome verdict = Verdict();
  return verdict.IsDone() ? Outcome{Outcome::Kind::Busy, 0, why} : verdict;
}

Outcome FtpFile::Finish() {
  if (ended_) return Outcome::Cancelled();
  if (wrote_) {
    try {
      data_.Connection().finish();
    } catch (const NLException& error) {
      return BrokenOff(Reason(error));
    }
  }
  return Verdict();
}

// Closes the data connection first, for some servers wait for that before they say how it ended.
Outcome FtpFile::Verdict() {
  ended_ = true;
  data_.Close();
  // Let go of at the end: a reply that is still unread is then the control connection's to read.
  const std::unique_ptr<FtpCommand> command = std::move(command_);
  return control_.Guard([&]() -> Outcome {
    if (control_.IsInterrupted()) {
      command->Hurry();
      return Outcome::Cancelled();
    }
    Outcome outcome;
    while (!command->IsComplete()) outcome = FtpControl::CheckResult(command->Next());
    return outcome.IsDone() && !wrote_ && data_.WasCut() ? JudgeCut() : outcome;
  });
}

// Somebody on the way can end a connection early, but not forge the size that comes encrypted.
Outcome FtpFile::JudgeCut() {
  const auto size = size_ ? size_() : std::nullopt;
  if (size == offset_ + received_) return data_.NoteCareless(), Outcome();
  return {Outcome::Kind::Busy, 0, Text("The data ended without a word that it was all.")};
}

}  // namespace corvane
