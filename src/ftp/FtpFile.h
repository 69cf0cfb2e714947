#pragma once

#include <cstdint>
#include <memory>

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
          std::int64_t offset);
  ~FtpFile() override;

  [[nodiscard]] std::int64_t Offset() const override { return offset_; }
  Outcome Read(std::span<char> buffer, std::size_t& got) override;
  [[nodiscard]] bool Wait(long milliseconds) override;
  Outcome Write(std::span<const char> bytes) override;
  Outcome Finish() override;

 private:
  Outcome BrokenOff(const Text& why);
  Outcome Verdict();

  FtpControl& control_;
  DataChannel& data_;
  std::unique_ptr<FtpCommand> command_;
  const std::int64_t offset_;
  bool wrote_ = false;
  bool ended_ = false;
};

}  // namespace corvane
