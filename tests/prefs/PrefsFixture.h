#pragma once

#include <gtest/gtest.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>

#include "prefs/PREF.h"
#include "support/Files.h"
#include "support/TemporaryDirectory.h"

namespace corvane {

namespace fs = std::filesystem;

/// One application, in a base directory that does not exist yet.
struct PrefsTest : testing::Test {
  PrefsTest() {
    ::setenv("XDG_CONFIG_HOME", (temporary.Path() / "config").c_str(), 1);
    EXPECT_EQ(PREFInit("test", &app), 0);
  }
  ~PrefsTest() override { PREFShutdown(app); }

  static void Put(PREFSet* set, const std::string& text) {
    EXPECT_EQ(PREFSetData(set, "item", text.data(), static_cast<int>(text.size()), "BYTE"_what), 0);
  }
  static std::string Get(PREFSet* set) {
    const Message* const message = PREFGetMessage(set);
    return std::string(message->FindData("item", "BYTE"_what).value_or("none"));
  }
  /// Loads the set "set", and changes its item without saving.
  PREFSet* Load(const char* text = nullptr) {
    PREFSet* set = nullptr;
    EXPECT_EQ(PREFLoadSet(app, "set", true, &set), 0);
    if (text != nullptr) Put(set, text);
    return set;
  }
  /// The bytes of a file whose item has this text.
  static std::string FileWith(const std::string& text) {
    Message message;
    message.AddData("item", "BYTE"_what, text);
    const std::string body = message.Flatten();
    const auto size = static_cast<std::uint32_t>(body.size());
    return std::string(reinterpret_cast<const char*>(&size), 4) + body;
  }
  /// What a save by another process does to the file.
  void SaveElsewhere(const std::string& text) {
    Write(temporary.Path() / "fresh", FileWith(text));
    fs::rename(temporary.Path() / "fresh", path);
  }
  [[nodiscard]] auto CountFiles() const {
    return std::distance(fs::directory_iterator(directory), {});
  }

  /// Runs `work` in a process of its own; Await returns what it returned.
  template <typename Work>
  static pid_t InChild(Work work) {
    const pid_t child = ::fork();
    if (child != 0) return child;
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    ::_exit(work());
  }
  static int Await(pid_t child) {
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }

  TemporaryDirectory temporary;
  const fs::path directory = temporary.Path() / "config" / "_LP_test";
  const fs::path path = directory / "set";
  PREFApp* app = nullptr;
};

}  // namespace corvane
