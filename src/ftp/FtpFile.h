#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

#include "remote/RemoteSession.h"

namespace corvane {

class DataChannel;
class FtpCommand;
class FtpControl;
class Stream;

/// The data of one RETR, STOR or LIST, open on a data connection.
class FtpFile final : public RemoteFile {
 public:
  /// The file's size in bytes as the server tells it on the control connection.
  using AskSize = std::function<std::optional<std::int64_t>()>;

  /// `command` was accepted and its data connection is open. The references outlive the object.
  /// `size` may be empty where the data has none.
  FtpFile(FtpControl& control, DataChannel& data, std::unique_ptr<FtpCommand> command,
          std::int64_t offset, AskSize size);
  ~FtpFile() override;

  [[nodiscard]] std::int64_t Offset() const override { return offset_; }
  Outcome Read(std::span<char> buffer, std::size_t& got) override;
  [[nodiscard]] bool Wait(long milliseconds) override;
  Outcome Write(std::span<const char> bytes) override;
  Outcome Finish() override;

 private:
  Outcome BrokenOff(const Text& why);
  Outcome Verdict();
  Outcome JudgeCut();

  FtpControl& control_;
  DataChannel& data_;
  std::unique_ptr<FtpCommand> command_;
  const std::int64_t offset_;
  const AskSize size_;
  std::int64_t received_ = 0;
  bool wrote_ = false;
  bool ended_ = false;
};

}  // namespace corvane
