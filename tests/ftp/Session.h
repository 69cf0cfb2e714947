#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "ftp/MFtp.h"
#include "support/RecordingBrowserUi.h"
#include "support/ScriptedServer.h"

namespace corvane {

/// A scripted server and a session with it.
struct Session : ListingSink {
  explicit Session(bool passive = false, const NLAddress& host = NLAddress("127.0.0.1", 0))
      : server(host), engine(server.Where(passive), ui) {
    engine.SetWaits(Waits::All(10'000));
  }

  /// Logs in; what went over the wire so far is left out of Sent().
  void LogIn() {
    EXPECT_TRUE(engine.Connect().IsDone()) << server.Dialogue();
    skip = server.Transcript().size();
  }

  /// What the client sent since LogIn, joined with "|". The addresses of PORT and EPRT are left
  /// out, for the system chooses them. With `verb` only its commands.
  [[nodiscard]] std::string Sent(const std::string& verb = "") const {
    std::string sent;
    const std::vector<std::string> lines = server.Transcript();
    for (std::size_t i = skip; i < lines.size(); ++i) {
      const bool port = lines[i].starts_with("PORT 127,0,0,1,") ||
                        lines[i].starts_with("EPRT |1|127.0.0.1|") ||
                        lines[i].starts_with("EPRT |2|::1|");
      EXPECT_TRUE(lines[i].ends_with("\r\n"));
      if (!lines[i].starts_with(verb)) continue;
      sent += (sent.empty() ? "" : "|") + lines[i].substr(0, port ? 4 : lines[i].size() - 2);
    }
    return sent;
  }

  /// Lists a directory; what came stands in `raw`, `names` and `kinds`.
  Outcome List(const std::string& path = "/") {
    raw.clear();
    names.clear();
    kinds.clear();
    return engine.List(path, *this);
  }
  void Raw(std::string_view text) override { raw = text; }
  bool Add(std::vector<RemoteEntry> entries) override {
    for (const RemoteEntry& entry : entries) {
      names += entry.name + "|";
      kinds += entry.name + std::to_string(static_cast<int>(entry.kind));
    }
    return true;
  }

  /// Downloads a file into `raw`, by another session with the server where that is given, waiting
  /// for data before each read if wished.
  Outcome Get(const std::string& path, std::int64_t offset = 0, MFtp* other = nullptr,
              bool waits = false) {
    raw.clear();
    std::unique_ptr<RemoteFile> file;
    Outcome outcome = (other != nullptr ? *other : engine).OpenForReading(path, offset, file);
    if (!outcome.IsDone()) return outcome;
    char block[4096];
    for (std::size_t got = 1; got > 0; raw.append(block, got)) {
      while (waits && !file->Wait(150)) continue;
      if (outcome = file->Read(block, got); !outcome.IsDone()) return outcome;
    }
    return file->Finish();
  }

  /// Whether the replies still belong to the commands: the server must know no such file.
  [[nodiscard]] bool IsInStep() {
    std::optional<std::int64_t> size;
    const Outcome outcome = engine.Size("/in step", size);
    return outcome.kind == Outcome::Kind::Refused && outcome.code == 550 &&
           outcome.text.English() == "Cannot do that.";
  }

  ScriptedServer server;
  std::shared_ptr<RecordingBrowserUi> ui = std::make_shared<RecordingBrowserUi>();
  MFtp engine;
  std::size_t skip = 0;
  std::string raw;
  std::string names;
  std::string kinds;
};

/// How an operation ended: its kind and its text in English.
inline std::string Told(const Outcome& outcome) {
  constexpr const char* kKinds[] = {"Done",       "Refused", "Busy",     "LocalFull",
                                    "LocalError", "Lost",    "Cancelled"};
  const std::string text = outcome.text.English();
  return kKinds[static_cast<int>(outcome.kind)] + (text.empty() ? "" : ": " + text);
}

}  // namespace corvane
