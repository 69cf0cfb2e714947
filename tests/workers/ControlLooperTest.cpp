#include "workers/ControlLooper.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "kit/Background.h"
#include "support/RecordingBrowserUi.h"
#include "support/ScriptedServer.h"
#include "support/WaitFor.h"

namespace corvane {
namespace {

using namespace std::chrono_literals;

/// A browser window on a server of its own. Closing it leaves no thread behind.
struct Window {
  ScriptedServer server;
  std::shared_ptr<RecordingBrowserUi> browser = std::make_shared<RecordingBrowserUi>();
  std::shared_ptr<ControlLooper> looper;

  void Connect(const std::string& path = "", bool passive = true) {
    looper = std::make_shared<ControlLooper>("127.0.0.1", server.Port(), "u", "p", path, passive,
                                             browser);
    looper->Run();
    Post("CNNT"_what, "", "");
  }

  void Post(std::uint32_t what, const std::string& field, const std::string& text) const {
    Message message(what);
    message.AddString(field, text);
    EXPECT_TRUE(looper->PostMessage(std::move(message)));
  }

  [[nodiscard]] bool Shows(const std::string& path, std::vector<std::string> names) const {
    names.insert(names.begin(), {".", ".."});
    return WaitFor([&] {
      const BrowserRecord seen = browser->Seen();
      return seen.path == path && seen.count == names.size() - 2 && seen.Names() == names;
    });
  }

  [[nodiscard]] bool Warned(std::size_t times) const {
    return WaitFor([&] { return browser->Seen().Texts("GERR"_what, "warning").size() == times; });
  }

  [[nodiscard]] bool Downloads(const std::string& name) const {
    const std::vector<std::string> names = {name};
    return WaitFor([&] { return browser->Seen().Texts("DWLD"_what, "FileName") == names; });
  }

  ~Window() {
    looper->Quit();
    EXPECT_FALSE(looper->PostMessage(Message("CRDR"_what)));
    looper.reset();
    EXPECT_TRUE(Background::WaitForNone(2000ms)) << server.Dialogue();
  }
};

TEST(ControlLooper, ServesItsWindowUntilTheConnectionIsLost) {
  Window w;
  w.server.Tree().AddFile("/pub/a", "1");
  w.Connect("", false);
  ASSERT_TRUE(w.Shows("/", {"pub"}));
  w.Post("HSYM"_what, "sym", "pub/a");
  w.Post("HSYM"_what, "sym", "pub");
  ASSERT_TRUE(w.Shows("/pub", {"a"}));
  EXPECT_TRUE(w.Downloads("pub/a"));
  w.Post("PCHN"_what, "cwd", "nowhere");
  ASSERT_TRUE(w.Warned(1));
  EXPECT_TRUE(w.Shows("/pub", {"a"}));
  w.server.Tree().AddFile("/pub/b", "1");
  const auto listings = [&w] {
    return std::ranges::count(w.browser->Seen().statuses, "Getting Dir Listing.");
  };
  const auto before = listings();
  for (int i = 0; i < 3; ++i) w.Post("PCHN"_what, "cwd", ".");
  ASSERT_TRUE(WaitFor([&] {
    return listings() == before + 3 && w.browser->Seen().statuses.back() == "Connected.";
  }));
  EXPECT_TRUE(w.Shows("/pub", {"a", "b"})) << "every row once";
  w.server.On("CWD", {.reply = "", .control = ControlEnd::Reset});
  w.Post("PCHN"_what, "cwd", "a");
  ASSERT_TRUE(w.Warned(2));
  EXPECT_EQ(w.browser->Seen().statuses.back(), "Connection lost.");
  w.Post("PCHN"_what, "cwd", "b");
  EXPECT_TRUE(w.Warned(3));
}

TEST(ControlLooper, StartsAtAPath) {
  const std::tuple<std::string, std::string, std::string> cases[] = {
      {"/pub", "/pub", "a b"}, {"/pub/a b", "/pub", "a b"}, {"/none/x", "/", "pub"}};
  for (const auto& [path, directory, row] : cases) {
    Window w;
    w.server.Tree().AddFile("/pub/a b", "1");
    w.Connect(path);
    EXPECT_TRUE(w.Shows(directory, {row})) << path;
    EXPECT_TRUE(path != "/pub/a b" || w.Downloads("a b"));
    EXPECT_TRUE(w.Warned(path == "/none/x" ? 1 : 0)) << path;
  }
}

TEST(ControlLooper, AsksAWindowsServerForUnixListings) {
  for (const std::string style : {"off", "on"}) {
    Window w;
    w.server.On("SYST", {.reply = "215 Windows_NT\r\n"});
    w.server.On("LIST", {.data = ""});
    w.server.On("SITE", {.reply = "200 MSDOS-like directory output is " + style + "\r\n"});
    w.Connect();
    ASSERT_TRUE(w.Shows("/", {}));
    const auto sent = w.server.Transcript();
    EXPECT_EQ(std::count(sent.begin(), sent.end(), "SITE DIRSTYLE\r\n"), style == "off" ? 1 : 2);
  }
}

// Whatever the server holds back.
TEST(ControlLooper, QuitsAtOnce) {
  const std::pair<const char*, ScriptedAction> cases[] = {
      {"greeting", {.reply = ""}},
      {"USER", {.reply = ""}},
      {"PASS", {.reply = ""}},
      {"PWD", {.reply = "257 half"}},
      {"LIST", {.dataEnd = DataEnd::Never}},
      {"LIST", {.data = "total 1\r\n", .dataLimit = 3, .dataEnd = DataEnd::Stall}},
      {"LIST", {.completion = ""}},
  };
  for (const bool passive : {false, true}) {
    for (const auto& [verb, action] : cases) {
      Window w;
      std::atomic<bool> arrived = false;
      ScriptedAction held = action;
      held.arrived = [&] { arrived = true; };
      w.server.On(verb, held);
      w.Connect("", passive);
      ASSERT_TRUE(WaitFor([&] { return arrived.load(); })) << verb;
      w.browser->closing = true;
    }
  }
}

}  // namespace
}  // namespace corvane
