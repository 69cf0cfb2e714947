#pragma once

#include <memory>
#include <string>
#include <vector>

#include "ftp/MFtp.h"
#include "support/RecordingBrowserUi.h"
#include "support/RecordingTransferUi.h"
#include "support/ScriptedServer.h"

namespace corvane {

/// A scripted server and a browser's engine on it.
struct Session {
  explicit Session(bool passive = false, const std::string& user = "u",
                   const std::string& password = "p")
      : engine("127.0.0.1", server.Port(), user, password, passive, browser) {
    engine.silenceLimit = 2000;
  }

  /// Logged in, with the transcript so far left out of Sent().
  Session& LogIn() {
    loggedIn = engine.Login() == 1;
    skip = server.Transcript().size();
    return *this;
  }

  /// What the client sent since LogIn, joined; the PORT and PASV lines as they are. The numbers of
  /// PORT lines are left out, for the system chooses them.
  [[nodiscard]] std::string Sent() const {
    std::string sent;
    const std::vector<std::string> lines = server.Transcript();
    for (std::size_t i = skip; i < lines.size(); ++i)
      sent += lines[i].starts_with("PORT 127,0,0,1,") ? "PORT\r\n" : lines[i];
    return sent;
  }

  [[nodiscard]] std::vector<std::string> Errors() const {
    return browser->Seen().Texts("FERR"_what, "error");
  }
  [[nodiscard]] std::vector<std::string> Warnings() const {
    return browser->Seen().Texts("GERR"_what, "warning");
  }

  ScriptedServer server;
  std::shared_ptr<RecordingBrowserUi> browser = std::make_shared<RecordingBrowserUi>();
  MFtp engine;
  bool loggedIn = false;
  std::size_t skip = 0;
};

/// The same for a transfer's engine.
struct TransferSession {
  explicit TransferSession(bool passive = false)
      : engine("127.0.0.1", server.Port(), "u", "p", passive, row) {
    engine.silenceLimit = 2000;
  }

  ScriptedServer server;
  std::shared_ptr<RecordingTransferUi> row = std::make_shared<RecordingTransferUi>();
  MFtp engine;
};

}  // namespace corvane
