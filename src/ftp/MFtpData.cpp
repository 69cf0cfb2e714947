#include <utility>

#include "ftp/FtpCommand.h"
#include "ftp/FtpFailure.h"
#include "ftp/FtpFile.h"
#include "ftp/MFtp.h"
#include "remote/RemotePath.h"

namespace corvane {
namespace {

constexpr std::string_view kRetrieve = "RETR ";
constexpr std::string_view kStore = "STOR ";

}  // namespace

Outcome MFtp::SetBinary() {
  if (binary_) return {};
  Outcome outcome = FtpControl::CheckResult(control_.SendCommand("TYPE I"));
  binary_ = outcome.IsDone();
  return outcome;
}

// A server that cannot begin at an offset begins at the start. A marker that no transfer has used
// is taken back; where that fails the transfer would begin anywhere.
Outcome MFtp::SetOffset(std::int64_t offset, std::int64_t& accepted) {
  accepted = 0;
  if (offset == 0 && !markerSet_) return {};
  const bool armed = std::exchange(markerSet_, true);
  Outcome outcome =
      FtpControl::CheckResult(control_.SendCommand("REST " + std::to_string(offset)), {}, 3);
  if (outcome.IsDone()) accepted = offset;
  if (!outcome.IsDone() && (armed || outcome.kind == Outcome::Kind::Lost)) return outcome;
  markerSet_ = accepted > 0;
  return {};
}

Outcome MFtp::Open(const std::string& command, std::string_view logged, std::int64_t offset,
                   std::unique_ptr<RemoteFile>& file) {
  try {
    Outcome outcome = OpenThisWay(command, logged, offset, file);
    while (!outcome.IsDone() && data_.TryOtherWay())
      outcome = OpenThisWay(command, logged, offset, file);
    if (!outcome.IsDone()) data_.Close();
    return outcome;
  } catch (const FtpFailure&) {
    data_.Close();
    throw;
  }
}

Outcome MFtp::OpenThisWay(const std::string& command, std::string_view logged, std::int64_t offset,
                          std::unique_ptr<RemoteFile>& file) {
  commandSent_ = false;
  if (Outcome outcome = data_.SetUp(); !outcome.IsDone()) return outcome;
  std::int64_t begin = 0;
  std::string line = command;
  const bool isStore = command.starts_with(kStore);
  const std::string name = isStore || command.starts_with(kRetrieve)
                               ? command.substr(command.find(' ') + 1)
                               : std::string();
  Outcome outcome = SetBinary();
  if (outcome.IsDone()) outcome = SetOffset(offset, begin);
  if (outcome.IsDone() && isStore && begin != offset) {
    outcome = MayAppend(name, offset);
    line = "APPE " + name;
    begin = offset;
  }
  if (!outcome.IsDone()) return outcome;
  auto sent = std::make_unique<FtpCommand>(control_, line, logged);
  commandSent_ = true;
  outcome = data_.Open(*sent);
  if (!outcome.IsDone()) return outcome;
  markerSet_ = false;
  file = std::make_unique<FtpFile>(control_, data_, std::move(sent), begin, isStore,
                                   Errands({control_, data_, features_, *habits_}, name));
  return outcome;
}

// Where a file cannot be written from an offset on, it can be written on at its end.
Outcome MFtp::MayAppend(const std::string& name, std::int64_t offset) {
  const Reply reply = control_.SendCommand("SIZE " + name);
  if (reply.FileStatus() == offset) return {};
  if (Outcome asked = FtpControl::CheckResult(reply); asked.kind == Outcome::Kind::Lost)
    return asked;
  return {Outcome::Kind::Refused, reply.code,
          Text::WithReason(Text("The server cannot go on with a file that was sent in part."),
                           Text::Raw(reply.code >= 400 ? reply.Words() : std::string_view()))};
}

Outcome MFtp::OpenForReading(const std::string& path, std::int64_t offset,
                             std::unique_ptr<RemoteFile>& file) {
  return control_.Guard([&]() -> Outcome {
    const auto [directory, name] = SplitPath(path);
    if (Outcome outcome = GoTo(directory); !outcome.IsDone()) return outcome;
    return Open(std::string(kRetrieve) + name, {}, offset, file);
  });
}

Outcome MFtp::OpenForWriting(const std::string& path, std::int64_t offset,
                             std::unique_ptr<RemoteFile>& file) {
  return control_.Guard([&]() -> Outcome {
    const auto [directory, name] = SplitPath(path);
    if (Outcome outcome = GoTo(directory); !outcome.IsDone()) return outcome;
    return Open(std::string(kStore) + name, {}, offset, file);
  });
}

}  // namespace corvane
