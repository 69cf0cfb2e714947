#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include "ftp/Errands.h"
#include "ftp/ReplyReader.h"
#include "remote/RemoteSession.h"

namespace corvane {

class DataChannel;
class FtpCommand;
class FtpControl;
class Stream;

/// The data of one RETR, STOR or LIST, open on a data connection.
class FtpFile final : public RemoteFile {
 public:
  /// `command` was accepted and its data connection is open. The references outlive the object.
  FtpFile(FtpControl& control, DataChannel& data, std::unique_ptr<FtpCommand> command,
          std::int64_t offset, bool writes, Errands errands);
  ~FtpFile() override;

  [[nodiscard]] std::int64_t Offset() const override { return offset_; }
  Outcome Read(std::span<char> buffer, std::size_t& got) override;
  [[nodiscard]] bool Wait(long milliseconds) override;
  Outcome Write(std::span<const char> bytes) override;
  using RemoteFile::Finish;
  Outcome Finish(const Afterwards& wanted, Settled& settled) override;

 private:
  /// Whether Wait has seen nothing come for as long as a silent server is waited for.
  [[nodiscard]] bool IsQuiet() const;
  /// Whether more data may move, of which there has been none for so many milliseconds.
  [[nodiscard]] bool GoesOn(long silence);
  Outcome BrokenOff(const Text& why);
  Outcome Verdict(const Afterwards& wanted, Settled& settled);
  Outcome HearWhy(FtpCommand& command);
  Outcome JudgeCut();

  FtpControl& control_;
  DataChannel& data_;
  std::unique_ptr<FtpCommand> command_;
  const std::int64_t offset_;
  const bool writes_;  // the file is the server's to store, even where it is empty
  Errands errands_;
  std::int64_t moved_ = 0;
  long quiet_ = 0;              // milliseconds that Wait has seen nothing come
  std::optional<Reply> early_;  // what ended the command before the data did
  bool stopped_ = false;        // no more data is waited for
  bool ended_ = false;
  bool broken_ = false;  // the data did not come to its end
  bool silent_ = false;  // nothing has moved for as long as a silent server is waited for
};

}  // namespace corvane
