#include "workers/ControlLooper.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "ftp/MFtp.h"
#include "kit/Background.h"
#include "support/RecordingBrowserUi.h"
#include "support/ScriptedServer.h"
#include "support/WaitFor.h"

namespace corvane {
namespace {

using namespace std::chrono_literals;

constexpr std::uint32_t kWarning = "GERR"_what;
constexpr std::uint32_t kLost = "LOST"_what;

/// A browser window on a server of its own. Closing it leaves no thread behind.
struct Window {
  ScriptedServer server;
  std::shared_ptr<RecordingBrowserUi> browser = std::make_shared<RecordingBrowserUi>();
  std::shared_ptr<ControlLooper> looper;

  void Connect(const std::string& path = "", bool passive = true) {
    Site site = server.Where(passive);
    site.path = path;
    looper = std::make_shared<ControlLooper>(site, std::make_shared<MFtp>(site, browser), browser);
    looper->Run();
    Post("CNNT"_what, "");
  }

  /// Asks for something about `path`.
  void Post(std::uint32_t what, const std::string& path,
            const std::vector<std::pair<const char*, std::string>>& fields = {}) const {
    Message message(what);
    message.AddString("path", path);
    for (const auto& [field, text] : fields) message.AddString(field, text);
    EXPECT_TRUE(looper->PostMessage(std::move(message)));
  }

  [[nodiscard]] bool Shows(const std::string& path, std::vector<std::string> names) const {
    return WaitFor([&] {
      const BrowserRecord seen = browser->Seen();
      return seen.path == path && seen.count == names.size() && seen.Names() == names;
    });
  }

  [[nodiscard]] bool Warned(std::size_t times, std::uint32_t what = kWarning) const {
    return WaitFor([&] { return browser->Seen().Texts(what, "warning").size() == times; });
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

TEST(ControlLooper, EntersFollowsAndRefreshes) {
  Window w;
  w.server.Tree().AddFile("/pub/a", "1");
  w.Connect("", false);
  ASSERT_TRUE(w.Shows("/", {"pub"}));
  w.Post("HSYM"_what, "/", {{"sym", "pub/a"}});
  w.Post("HSYM"_what, "/", {{"sym", "pub"}});
  ASSERT_TRUE(w.Shows("/pub", {"a"}));
  EXPECT_TRUE(w.Downloads("pub/a"));
  w.Post("PCHN"_what, "/pub", {{"cwd", "nowhere"}});
  ASSERT_TRUE(w.Warned(1));
  EXPECT_TRUE(w.Shows("/pub", {"a"}));
  w.server.Tree().AddFile("/pub/b", "1");
  // What is asked for in a hurry never shows one directory's rows under another's path.
  for (int i = 0; i < 5; ++i) {
    w.Post("PCHN"_what, "/pub", {{"cwd", ".."}});
    w.Post("PCHN"_what, "/", {{"cwd", "pub"}});
  }
  ASSERT_TRUE(WaitFor([&] {
    const auto done = [](const Message& message) { return message.what == "DONE"_what; };
    return std::ranges::count_if(w.browser->Seen().messages, done) == 14;
  }));
  EXPECT_TRUE(w.Shows("/pub", {"a", "b"}));
}

TEST(ControlLooper, StartsAtAPath) {
  // The path, the directory that is shown, its rows, and the file that the path names.
  const std::tuple<std::string, const char*, std::vector<std::string>, std::string> cases[] = {
      {"/pub", "/pub", {"a b"}, ""},        {"pub", "/pub", {"a b"}, ""},
      {"/pub/a b", "/pub", {"a b"}, "a b"}, {"pub/a b", "/pub", {"a b"}, "a b"},
      {"top", "/", {"pub", "top"}, "top"},  {"/none/x", "/", {"pub", "top"}, ""},
  };
  for (const auto& [path, directory, rows, fetched] : cases) {
    Window w;
    w.server.Tree().AddFile("/pub/a b", "1");
    w.server.Tree().AddFile("/top", "1");
    w.Connect(path);
    EXPECT_TRUE(w.Shows(directory, rows)) << path << w.server.Dialogue();
    EXPECT_TRUE(fetched.empty() || w.Downloads(fetched)) << path;
    EXPECT_TRUE(w.Warned(path == "/none/x" ? 1 : 0)) << path;
  }
  // A file in a directory that cannot be entered is not fetched, and a device is not shown.
  Window w;
  w.server.On("CWD", {.reply = "550 Shut.\r\n"});
  const std::string listing = "crw 1 u g 1, 3 Jan 1 10:00 null\r\ndrwx 1 u g 1 Jan 1 10:00 pub\r\n";
  w.server.On("LIST", {.data = listing});
  w.Connect("/pub/a");
  EXPECT_TRUE(w.Shows("/", {"pub"}) && w.Warned(1));
  EXPECT_TRUE(w.browser->Seen().Texts("DWLD"_what, "FileName").empty());
}

// However it was lost: the next request says so, and a new login leads to the same directory.
TEST(ControlLooper, ConnectsAgainAfterALoss) {
  const ScriptedAction losses[] = {
      {.reply = "", .control = ControlEnd::Reset},
      {.reply = "", .control = ControlEnd::Close},
      {.reply = "421 Idle for too long.\r\n", .control = ControlEnd::Close},
  };
  for (const ScriptedAction& loss : losses) {
    Window w;
    w.server.Tree().AddFile("/pub/a", "1");
    w.Connect("/pub");
    ASSERT_TRUE(w.Shows("/pub", {"a"}));
    w.server.On("CWD", loss, 2);
    w.Post("PCHN"_what, "/pub", {{"cwd", ".."}});
    ASSERT_TRUE(w.Warned(1, kLost));
    EXPECT_EQ(w.browser->Seen().statuses.back(), "Connection lost.");
    w.Post("DELE"_what, "/pub", {{"name", "a"}});
    ASSERT_TRUE(w.Warned(2, kLost));
    w.server.Tree().AddFile("/pub/b", "1");
    w.server.On("PASS", {.reply = "530 Too many users.\r\n"}, 2);
    for (int i = 0; i < 2; ++i) w.Post("RCNN"_what, "/pub");
    EXPECT_TRUE(w.Shows("/pub", {"a", "b"})) << w.server.Dialogue();
    EXPECT_EQ(w.browser->Seen().Texts("FERR"_what, "error").size(), 1U);
    EXPECT_TRUE(w.Warned(2, kLost) && w.Warned(0));
  }
}

TEST(ControlLooper, DeletesRenamesAndMakesDirectories) {
  Window w;
  w.server.Tree().AddFile("/pub/a", "1");
  w.server.Tree().AddFile("/pub/b", "1");
  w.server.Tree().AddFile("/pub/d/e", "1");
  w.server.Tree().AddLink("/pub/l", "/pub/b");
  w.server.On("RNFR", {.reply = "350 And?\r\n"});
  w.server.On("RNTO", {.reply = "250 Renamed.\r\n"});
  w.server.On("RNTO", {.reply = "553 Not there.\r\n"}, 2);
  w.Connect("/pub");
  ASSERT_TRUE(w.Shows("/pub", {"a", "b", "d", "l"}));

  Message entries("DELE"_what);
  entries.AddString("path", "/pub");
  const std::pair<const char*, std::int32_t> rows[] = {
      {"a", 1}, {"gone", 1}, {"d", 2}, {"no", 2}, {"l", 3}};
  for (const auto& [name, type] : rows) {
    entries.AddString("name", name);
    entries.AddInt32("type", type);
  }
  ASSERT_TRUE(w.looper->PostMessage(entries));
  EXPECT_TRUE(w.Warned(1)) << w.server.Dialogue();
  EXPECT_EQ(w.browser->Seen().Names(), (std::vector<std::string>{"b"}));
  EXPECT_EQ(w.browser->Seen().Texts(kWarning, "warning").front(),
            "The server did not delete everything:\n\ngone: Cannot do that.\nno: Cannot do that.");

  const std::pair<const char*, const char*> renames[] = {
      {"/pub", "c"}, {"/pub", "x"}, {"/elsewhere", "y"}};
  for (const auto& [path, to] : renames)
    w.Post("RNFL"_what, path, {{"original", "b"}, {"renameto", to}});
  EXPECT_TRUE(w.Warned(3));
  EXPECT_EQ(w.browser->Seen().Names().back(), "c");

  w.Post("MKDR"_what, "/pub", {{"name", "new"}});
  EXPECT_TRUE(w.Shows("/pub", {"b", "new"}));
  w.server.On("MKD", {.reply = "550 It already exists.\r\n"});
  w.Post("MKDR"_what, "/pub", {{"name", "new"}});
  EXPECT_TRUE(w.Warned(4));
  Message done("DONE"_what);
  done.AddInt32("request", static_cast<std::int32_t>("MKDR"_what));
  const auto answered = [&] { return std::ranges::count(w.browser->Seen().messages, done) == 2; };
  EXPECT_TRUE(WaitFor(answered));
}

TEST(ControlLooper, ShowsFilesAndTheListingAsText) {
  for (const bool whole : {true, false}) {
    Window w;
    w.server.Tree().AddFile("/f", "one\r\ntwo\n");
    if (!whole) w.server.On("RETR", {.dataLimit = 3, .completion = "426 Gone\r\n"}, 2);
    w.Connect();
    ASSERT_TRUE(w.Shows("/", {"f"}));
    w.Post("VWFL"_what, "/", {{"file", "none"}});
    EXPECT_TRUE(w.Warned(1));
    w.Post("VWFL"_what, "/", {{"file", "f"}});
    EXPECT_TRUE(WaitFor([&] { return w.browser->Seen().viewerNote.has_value(); }));
    const BrowserRecord seen = w.browser->Seen();
    EXPECT_EQ(seen.viewerTitle + "|" + seen.viewerText + "|" + seen.viewerNote.value_or("none"),
              whole ? "f|one\ntwo\n|" : "f|one|The file is not complete: Gone");
    w.Post("VWDR"_what, "/");
    ASSERT_TRUE(WaitFor([&] { return w.browser->Seen().viewerTitle == "Listing of: /"; }));
    EXPECT_TRUE(WaitFor([&] { return w.browser->Seen().viewerText.ends_with(" f\n"); }));
  }
}

// Whatever the server holds back.
TEST(ControlLooper, QuitsAtOnce) {
  const std::pair<const char*, ScriptedAction> cases[] = {
      {"greeting", {.reply = ""}},
      {"PWD", {.reply = "257 half"}},
      {"LIST", {.reply = "150 Wait\r\n"}},
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
