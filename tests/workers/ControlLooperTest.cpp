#include "workers/ControlLooper.h"

#include <gtest/gtest.h>

#include "kit/Background.h"
#include "support/RecordingBrowserUi.h"
#include "support/ScriptedServer.h"
#include "support/WaitFor.h"

namespace corvane {
namespace {

using namespace std::chrono_literals;

class ControlLooperTest : public testing::Test {
 protected:
  void Connect(const std::string& path = "", bool passive = false) {
    looper_ = std::make_shared<ControlLooper>("127.0.0.1", server_.Port(), "u", "p", path, passive,
                                              browser_);
    ASSERT_TRUE(looper_->Run());
    ASSERT_TRUE(looper_->PostMessage(Message("CNNT"_what)));
  }

  void GoTo(const std::string& directory) {
    Message change("PCHN"_what);
    change.AddString("cwd", directory);
    ASSERT_TRUE(looper_->PostMessage(std::move(change)));
  }

  bool Shows(const std::string& path, const std::vector<std::string>& names) {
    std::vector<std::string> rows = {".", ".."};
    rows.insert(rows.end(), names.begin(), names.end());
    return WaitFor([&] {
      const BrowserRecord seen = browser_->Seen();
      return seen.path == path && seen.count == names.size() && seen.Names() == rows;
    });
  }

  void TearDown() override {
    if (looper_) looper_->Quit();
    looper_.reset();
    EXPECT_TRUE(Background::WaitForNone(1000ms)) << server_.Dialogue();
  }

  ScriptedServer server_;
  std::shared_ptr<RecordingBrowserUi> browser_ = std::make_shared<RecordingBrowserUi>();
  std::shared_ptr<ControlLooper> looper_;
};

TEST_F(ControlLooperTest, ConnectsEntersAndRefreshes) {
  server_.Tree().AddFile("/pub/a", "1");
  Connect();
  ASSERT_TRUE(Shows("/", {"pub"}));
  GoTo("pub");
  ASSERT_TRUE(Shows("/pub", {"a"}));
  GoTo("nowhere");
  ASSERT_TRUE(WaitFor([&] { return !browser_->Seen().Texts("GERR"_what, "warning").empty(); }));
  EXPECT_TRUE(Shows("/pub", {"a"}));
  server_.Tree().AddFile("/pub/b", "1");
  GoTo(".");
  EXPECT_TRUE(Shows("/pub", {"a", "b"}));
}

TEST_F(ControlLooperTest, StartsAtAFile) {
  server_.Tree().AddFile("/pub/a b", "1");
  Connect("/pub/a b", true);
  ASSERT_TRUE(Shows("/pub", {"a b"}));
  ASSERT_TRUE(WaitFor([&] {
    return browser_->Seen().Texts("DWLD"_what, "FileName") == std::vector<std::string>{"a b"};
  }));
}

TEST_F(ControlLooperTest, FollowsLinksToFilesAndDirectories) {
  server_.Tree().AddFile("/pub/a", "1");
  Connect();
  for (const char* name : {"pub/a", "pub"}) {
    Message link("HSYM"_what);
    link.AddString("sym", name);
    ASSERT_TRUE(looper_->PostMessage(std::move(link)));
  }
  EXPECT_TRUE(Shows("/pub", {"a"}));
  EXPECT_EQ(browser_->Seen().Texts("DWLD"_what, "FileName"), std::vector<std::string>{"pub/a"});
}

TEST_F(ControlLooperTest, StartsAtADirectoryThatIsMissing) {
  server_.Tree().AddFile("/a", "1");
  Connect("/none/x");
  EXPECT_TRUE(Shows("/", {"a"}));
  EXPECT_EQ(browser_->Seen().Texts("GERR"_what, "warning").size(), 1U);
}

TEST_F(ControlLooperTest, AsksAWindowsServerForUnixListings) {
  for (const bool off : {true, false}) {
    ScriptedServer server;
    server.On("SYST", {.reply = "215 Windows_NT\r\n"});
    server.On("SITE", {.reply = off ? "200 MSDOS-like directory output is off\r\n"
                                    : "200 MSDOS-like directory output is on\r\n"});
    auto browser = std::make_shared<RecordingBrowserUi>();
    auto looper =
        std::make_shared<ControlLooper>("127.0.0.1", server.Port(), "u", "p", "", true, browser);
    looper->Run();
    ASSERT_TRUE(looper->PostMessage(Message("CNNT"_what)));
    ASSERT_TRUE(WaitFor([&] { return browser->Seen().count.has_value(); }));
    int asked = 0;
    for (const std::string& line : server.Transcript()) asked += line == "SITE DIRSTYLE\r\n";
    EXPECT_EQ(asked, off ? 1 : 2);
    looper->Quit();
  }
}

TEST_F(ControlLooperTest, SaysThatTheConnectionIsLost) {
  Connect();
  ASSERT_TRUE(Shows("/", {}));
  server_.On("CWD", {.reply = "", .control = ControlEnd::Reset});
  GoTo("a");
  ASSERT_TRUE(WaitFor([&] { return browser_->Seen().Texts("GERR"_what, "warning").size() == 1; }));
  EXPECT_TRUE(WaitFor([&] { return browser_->Seen().statuses.back() == "Connection lost."; }));
  GoTo("b");
  EXPECT_TRUE(WaitFor([&] { return browser_->Seen().Texts("GERR"_what, "warning").size() == 2; }));
}

// Whatever the server holds back, a window that closes leaves no thread behind.
TEST_F(ControlLooperTest, QuitsAtOnce) {
  const struct {
    const char* verb;
    ScriptedAction action;
  } cases[] = {
      {"greeting", {.reply = ""}},
      {"PASS", {.reply = ""}},
      {"PWD", {.reply = "257 half"}},
      {"LIST", {.reply = ""}},
      {"LIST", {.dataEnd = DataEnd::Never, .completion = ""}},
      {"LIST", {.data = "total 1\r\n", .dataLimit = 3, .dataEnd = DataEnd::Stall}},
      {"LIST", {.completion = ""}},
  };
  for (const bool passive : {false, true}) {
    for (const auto& c : cases) {
      ScriptedServer server;
      std::atomic<bool> arrived = false;
      ScriptedAction action = c.action;
      action.arrived = [&] { arrived = true; };
      server.On(c.verb, action);
      auto browser = std::make_shared<RecordingBrowserUi>();
      auto looper = std::make_shared<ControlLooper>("127.0.0.1", server.Port(), "u", "p", "",
                                                    passive, browser);
      looper->Run();
      ASSERT_TRUE(looper->PostMessage(Message("CNNT"_what)));
      ASSERT_TRUE(WaitFor([&] { return arrived.load(); })) << c.verb;
      browser->closing = true;
      looper->Quit();
      EXPECT_FALSE(looper->PostMessage(Message("CRDR"_what)));
      looper.reset();
      EXPECT_TRUE(Background::WaitForNone(1000ms)) << c.verb << passive << server.Dialogue();
    }
  }
}

}  // namespace
}  // namespace corvane
