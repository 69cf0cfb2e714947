#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "ftp/MFtp.h"
#include "support/RecordingBrowserUi.h"
#include "support/ScriptedServer.h"

namespace corvane {

/// A scripted server and a browser window's engine.
struct Session {
  explicit Session(bool passive = false)
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
    return ui->Seen().Texts("GERR"_what, "warning");
  }

  ScriptedServer server;
  std::shared_ptr<RecordingBrowserUi> ui = std::make_shared<RecordingBrowserUi>();
  MFtp engine;
  std::size_t skip = 0;
};

}  // namespace corvane
