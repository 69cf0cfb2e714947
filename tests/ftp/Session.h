#pragma once

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <string>
#include <vector>

#include "ftp/MFtp.h"
#include "support/RecordingBrowserUi.h"
#include "support/RecordingTransferUi.h"
#include "support/ScriptedServer.h"
#include "support/TemporaryDirectory.h"
#include "util/LocalFile.h"

namespace corvane {

inline constexpr std::uint32_t kWarning = "GERR"_what;

/// The silence limit for a call that is to end with `error`: short only where the server is silent
/// on purpose, so that a slow machine is not taken for a silent server.
inline long LimitFor(const std::string& error) {
  return error.find("does not answer") != std::string::npos ? 700 : 10'000;
}

/// A scripted server, a local folder, and an engine that reports to `ui`.
template <typename Ui>
struct SessionOf {
  explicit SessionOf(bool passive = false)
      : engine("127.0.0.1", server.Port(), "u", "p", passive, ui) {
    engine.silenceLimit = 10'000;
  }

  /// Logs in; what went over the wire so far is left out of Sent().
  void LogIn() {
    EXPECT_EQ(engine.Login(), 1) << server.Dialogue();
    skip = server.Transcript().size();
  }

  /// What the client sent since LogIn, joined. The numbers of PORT lines are left out, for the
  /// system chooses them.
  [[nodiscard]] std::string Sent() const {
    std::string sent;
    const std::vector<std::string> lines = server.Transcript();
    for (std::size_t i = skip; i < lines.size(); ++i)
      sent += lines[i].starts_with("PORT 127,0,0,1,") ? "PORT\r\n" : lines[i];
    return sent;
  }

  [[nodiscard]] std::vector<std::string> Warnings() const {
    return ui->Seen().Texts(kWarning, "warning");
  }

  /// Logs in and fetches "f", listed with `expected` bytes, into the folder.
  int Download(std::int64_t expected) {
    LocalFile file;
    EXPECT_EQ(file.Open(folder.Path(), "f", LocalFile::Mode::Create), 0);
    LogIn();
    EXPECT_TRUE(engine.PrepareTransfer());
    return engine.Download(*ui, file, {"f", expected, 0, true}, cancelled);
  }

  /// Logs in and stores the folder's "f".
  int Upload() {
    LocalFile file;
    EXPECT_EQ(file.OpenForReading(folder.Path() / "f"), 0);
    LogIn();
    EXPECT_TRUE(engine.PrepareTransfer());
    return engine.Upload(*ui, file, "f", cancelled);
  }

  ScriptedServer server;
  TemporaryDirectory folder;
  std::shared_ptr<Ui> ui = std::make_shared<Ui>();
  MFtp engine;
  std::size_t skip = 0;
  std::atomic<bool> cancelled{false};
};

using Session = SessionOf<RecordingBrowserUi>;
using TransferSession = SessionOf<RecordingTransferUi>;

}  // namespace corvane
