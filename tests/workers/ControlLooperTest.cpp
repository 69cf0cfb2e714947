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
  std::int32_t keepAlive = 0;

  void Connect(const std::string& path = "", bool passive = true) {
    Site site = server.Where(passive);
    site.path = path;
    site.keepAlive = keepAlive;
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

  /// Whether so many requests are over.
  [[nodiscard]] bool Answered(std::ptrdiff_t times) const {
    const auto done = [](const Message& message) { return message.what == "DONE"_what; };
    return WaitFor([&] { return std::ranges::count_if(browser->Seen().messages, done) == times; });
  }

  /// Whether the status comes to be that.
  [[nodiscard]] bool Ends(const std::string& status) const {
    return WaitFor([&] { return browser->Seen().statuses.back() == status; });
  }

  /// The commands with that verb, joined with "|".
  [[nodiscard]] std::string Sent(const std::string& verb) const {
    std::string sent;
    for (const std::string& line : server.Transcript()) {
      if (!line.starts_with(verb)) continue;
      sent += (sent.empty() ? "" : "|") + line.substr(0, line.size() - 2);
    }
    return sent;
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
  EXPECT_EQ(w.browser->Seen().Texts(kWarning, "warning").front(),
            "The directory /pub/nowhere cannot be entered.\n\nCannot do that.");
  EXPECT_TRUE(w.Shows("/pub", {"a"}));
  w.server.Tree().AddFile("/pub/b", "1");
  // What is asked for in a hurry never shows one directory's rows under another's path.
  for (int i = 0; i < 5; ++i) {
    w.Post("PCHN"_what, "/pub", {{"cwd", ".."}});
    w.Post("PCHN"_what, "/", {{"cwd", "pub"}});
  }
  ASSERT_TRUE(w.Answered(14));
  EXPECT_TRUE(w.Shows("/pub", {"a", "b"}));
}

TEST(ControlLooper, TellsHowFarConnectingIs) {
  for (const bool refused : {false, true}) {
    Window w;
    w.server.Tree().AddDirectory("/pub");
    if (refused) w.server.On("PASS", {.reply = "530-Login\r\n530 incorrect.\r\n"});
    w.Connect("/pub");
    ASSERT_TRUE(w.Answered(1));
    const BrowserRecord seen = w.browser->Seen();
    const std::string port = std::to_string(w.server.Port());
    std::vector<std::string> steps = {"Looking up 127.0.0.1 …",
                                      "The address is 127.0.0.1.",
                                      "Connecting to port " + port + " …",
                                      "Port " + port + " answers.",
                                      "Not encrypted.",
                                      "Logging in as u …",
                                      "Logged in as u.",
                                      "Opening /pub …",
                                      "Opening /pub"};
    if (refused) steps.resize(6);
    EXPECT_EQ(seen.steps, steps);
    EXPECT_EQ(std::ranges::count(seen.statuses, "Connected."), refused ? 0 : 1);
    EXPECT_EQ(seen.statuses.back(), refused ? "Not connected." : "Connected.");
    if (!refused) continue;
    const Message& error = seen.messages.front();
    EXPECT_EQ(error.FindInt32("kind"), static_cast<std::int32_t>(Outcome::Trouble::RefusedLogin));
    EXPECT_EQ(error.FindString("server"), "530-Login\n530 incorrect.");
    EXPECT_TRUE(error.FindText("advice"));
  }
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

// The request is carried out once more, unless it may have been carried out already.
TEST(ControlLooper, LogsInAnewAfterALoss) {
  const ScriptedAction reset = {.reply = "", .control = ControlEnd::Reset};
  const ScriptedAction close = {.reply = "", .control = ControlEnd::Close};
  const ScriptedAction bye = {.reply = "421 Bye.\r\n", .control = ControlEnd::Close};
  const std::string anew = "The connection was lost. Logged in anew.";
  const std::string unknown =
      "No answer came, so the server may have carried out the last command or not.";
  struct Case {
    const char* verb;
    ScriptedAction loss;
    std::uint32_t request;
    std::pair<const char*, std::string> field;
    std::string status;
    std::vector<std::string> rows;
    std::vector<std::string> reasons;
  };
  const Case cases[] = {
      {"CWD", reset, "PCHN"_what, {"cwd", "d"}, anew, {}, {}},
      {"CWD", close, "PCHN"_what, {"cwd", "d"}, anew, {}, {}},
      {"CWD", bye, "PCHN"_what, {"cwd", "d"}, anew, {}, {}},
      {"DELE", bye, "DELE"_what, {"name", "a"}, "Deletion Success.", {"d"}, {}},
      {"DELE", close, "DELE"_what, {"name", "a"}, "Connection lost.", {"a", "d"}, {unknown}},
      {"MKD", reset, "MKDR"_what, {"name", "n"}, "Connection lost.", {"a", "d"}, {unknown}},
  };
  for (const Case& c : cases) {
    Window w;
    w.server.Tree().AddFile("/pub/a", "1");
    w.server.Tree().AddDirectory("/pub/d");
    w.Connect("/pub");
    ASSERT_TRUE(w.Shows("/pub", {"a", "d"}));
    w.server.On(c.verb, c.loss, c.request == "PCHN"_what ? 2 : 1);
    w.Post(c.request, "/pub", {c.field});
    EXPECT_TRUE(w.Answered(2) && w.Ends(c.status)) << w.server.Dialogue();
    EXPECT_TRUE(WaitFor([&] { return w.browser->Seen().Names() == c.rows; }));
    EXPECT_EQ(w.browser->Seen().Texts(kLost, "reason"), c.reasons);
    EXPECT_TRUE(w.Warned(0));
    EXPECT_EQ(w.browser->Seen().log.find("Logged in anew") == std::string::npos,
              !c.reasons.empty());
  }
}

// What an idle time is told as, and a login that is refused; each request tries again.
TEST(ControlLooper, TellsWhyAnIdleConnectionWasClosed) {
  Window w;
  w.server.Tree().AddFile("/pub/a", "1");
  w.server.CloseIdle(2'100, "421 Idle for too long.\r\n");
  w.Connect("/pub");
  ASSERT_TRUE(w.Shows("/pub", {"a"}));
  const auto closed = [&w](int times) {
    return WaitFor([&] { return w.server.Closed() == times; });
  };
  ASSERT_TRUE(closed(1));
  w.Post("CRDR"_what, "/pub");
  EXPECT_TRUE(
      w.Ends("The server closed the connection after 2 seconds without a command. "
             "Logged in anew."));
  ASSERT_TRUE(closed(2));
  for (const int occurrence : {3, 4}) w.server.On("PASS", {.reply = "530 No.\r\n"}, occurrence);
  for (int i = 0; i < 2; ++i) w.Post("CRDR"_what, "/pub");
  ASSERT_TRUE(w.Warned(2, kLost));
  const std::string reason = "The server closed it after 2 seconds without a command.";
  const BrowserRecord seen = w.browser->Seen();
  EXPECT_EQ(seen.Texts(kLost, "reason"), std::vector(2, reason));
  EXPECT_TRUE(seen.Texts(kLost, "login").back().ends_with("\n\nNo."));
  EXPECT_EQ(seen.Names(), std::vector<std::string>{"a"});
  w.server.On("PASS", {.reply = "530 Too many users.\r\n"}, 5);
  for (int i = 0; i < 2; ++i) w.Post("RCNN"_what, "/pub");
  EXPECT_TRUE(w.Ends("Connected.") && w.Warned(2, kLost) && w.Warned(0));
  EXPECT_EQ(w.browser->Seen().Texts("FERR"_what, "error").size(), 1U);
  // That loss is over, and the next one is another.
  w.server.On("DELE", {.reply = "", .control = ControlEnd::Close});
  w.Post("DELE"_what, "/pub", {{"name", "a"}});
  ASSERT_TRUE(w.Warned(3, kLost));
  EXPECT_TRUE(w.browser->Seen().Texts(kLost, "reason").back().starts_with("No answer came"));
  // A window that waits is shown where it was, whoever has logged in anew.
  w.Post("CRDR"_what, "/pub");
  EXPECT_TRUE(w.Ends("The connection was lost. Logged in anew."));
  w.browser->SetPath("");
  w.Post("RCNN"_what, "/pub");
  EXPECT_TRUE(w.Shows("/pub", {"a"}));
  w.server.On("LIST", {.reply = "550 No.\r\n"});
  w.Post("RCNN"_what, "/pub");
  EXPECT_TRUE(WaitFor([&] { return w.browser->Seen().count == 0U; }));
  EXPECT_FALSE(w.browser->Seen().whole);
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

// Nothing is replaced, whatever kind it is of; a link's name that is no line is not sent.
TEST(ControlLooper, MovesAndDuplicates) {
  Window w;
  for (const char* name : {"a", "b", "c", "to/b"})
    w.server.Tree().AddFile(std::string("/pub/") + name, "1");
  w.server.Tree().AddDirectory("/pub/to/c");
  w.server.On("FEAT", {.reply = "211-Features:\r\n SITE COPY\r\n AVBL\r\n211 End\r\n"});
  w.server.On("RNFR", {.reply = "350 And?\r\n"});
  w.server.On("RNTO", {.reply = "250 Moved.\r\n"});
  w.server.On("SITE", {.reply = "350 And?\r\n"}, 1);
  w.server.On("SITE", {.reply = "250 Copied.\r\n"}, 2);
  w.Connect("/pub");
  ASSERT_TRUE(w.Shows("/pub", {"a", "b", "c", "to"}));
  EXPECT_TRUE(WaitFor([&] {
    const auto copies = [](const Message& m) {
      return m.what == "CAPS"_what && m.FindInt32("copy") == 1;
    };
    return std::ranges::count_if(w.browser->Seen().messages, copies) == 1;
  }));
  Message entries("MOVE"_what);
  entries.AddString("path", "/pub");
  entries.AddString("to", "to");
  for (const char* name : {"a", "b", "c", "to"}) entries.AddString("name", name);
  ASSERT_TRUE(w.looper->PostMessage(entries));
  ASSERT_TRUE(w.Warned(1));
  EXPECT_EQ(w.browser->Seen().Texts(kWarning, "warning").front(),
            "Not everything was moved to /pub/to:\n\nb: There is one of that name already.\n"
            "c: There is one of that name already.\nto: A directory cannot be moved into itself.");
  EXPECT_EQ(w.browser->Seen().Names(), (std::vector<std::string>{"b", "c", "to"}));
  EXPECT_EQ(w.Sent("RN"), "RNFR a|RNTO /pub/to/a");

  for (const char* to : {"to", "c", "b 2"})
    w.Post("DUPL"_what, "/pub", {{"name", "b"}, {"to", to}});
  EXPECT_TRUE(w.Answered(5) && w.Warned(3));
  EXPECT_EQ(w.Sent("SITE"), "SITE CPFR b|SITE CPTO b 2");
  EXPECT_EQ(w.browser->Seen().Names().back(), "b 2");
  w.Post("RNFL"_what, "/pub", {{"original", "b"}, {"renameto", "c\nDELE c"}});
  EXPECT_TRUE(w.Warned(4));
  EXPECT_EQ(w.Sent("RN"), "RNFR a|RNTO /pub/to/a");
}

// What the server does not tell is shown as it is known; very many are read from one listing.
TEST(ControlLooper, LooksAtWhatHasCome) {
  Window w;
  w.Connect("/");
  ASSERT_TRUE(w.Shows("/", {}));
  Message entries("STAT"_what);
  entries.AddString("path", "/");
  for (int i = 0; i < 2; ++i) {
    entries.AddString("name", i == 0 ? "there" : "hidden");
    entries.AddInt32("type", 1);
    entries.AddInt64("size", 7);
  }
  w.server.Tree().AddFile("/there", "123");
  ASSERT_TRUE(w.looper->PostMessage(entries));
  ASSERT_TRUE(w.Answered(2));
  const BrowserRecord seen = w.browser->Seen();
  ASSERT_EQ(seen.Names(), (std::vector<std::string>{"there", "hidden"}));
  EXPECT_EQ(seen.entries[0].size, 3);
  EXPECT_NE(seen.entries[0].mode, "");
  EXPECT_EQ(seen.entries[1].size, 7);
  EXPECT_EQ(seen.entries[1].mode, "");
  for (int i = 0; i < 20; ++i) entries.AddString("name", "more");
  w.server.Tree().AddFile("/more", "12345");
  ASSERT_TRUE(w.looper->PostMessage(entries));
  ASSERT_TRUE(w.Answered(3));
  EXPECT_EQ(w.browser->Seen().entries.back().size, 5);
  EXPECT_TRUE(w.Warned(0));
}

// It shows nothing of that, and an end that it meets is left to the next request.
TEST(ControlLooper, KeepsAnIdleConnectionAlive) {
  Window w;
  w.keepAlive = 1;
  w.server.On("NOOP", {.reply = "421 Bye\r\n", .control = ControlEnd::Close}, 2);
  w.Connect();
  ASSERT_TRUE(w.Shows("/", {}) && w.Ends("Connected."));
  const std::size_t told = w.browser->Seen().statuses.size();
  ASSERT_TRUE(WaitFor([&] { return w.Sent("NOOP") == "NOOP|NOOP"; }));
  std::this_thread::sleep_for(1500ms);
  EXPECT_EQ(w.Sent("USER"), "USER u");
  EXPECT_TRUE(w.Warned(0, kLost) && w.Answered(1));
  EXPECT_EQ(w.browser->Seen().statuses.size(), told);
  w.server.Tree().AddFile("/a", "1");
  w.Post("CRDR"_what, "/");
  EXPECT_TRUE(w.Shows("/", {"a"})) << w.server.Dialogue();
}

// A request that arrives goes before what nobody asked for, however long the server thinks of it.
TEST(ControlLooper, TellsOfFreeSpaceOnlyWhereThatDelaysNothing) {
  Window w;
  std::atomic<bool> arrived = false;
  w.server.On("FEAT", {.reply = "211-Features:\r\n AVBL\r\n211 End\r\n"});
  w.server.On("AVBL", {.arrived = [&] { arrived = true; }, .reply = "550 No\r\n", .late = true}, 1);
  w.server.On("AVBL", {.reply = "213 6442450944\r\n"});
  w.server.Tree().AddFile("/a", "1");
  w.Connect();
  ASSERT_TRUE(w.Shows("/", {"a"}) && WaitFor([&] { return arrived.load(); }));
  const auto begin = std::chrono::steady_clock::now();
  w.Post("PCHN"_what, "/", {{"cwd", "/"}});
  ASSERT_TRUE(w.Answered(2));
  EXPECT_LT(std::chrono::steady_clock::now() - begin, 1500ms);
  EXPECT_TRUE(WaitFor([&] {
    const auto told = [](const Message& m) {
      return m.what == "FREE"_what && m.FindInt64("bytes") == 6'442'450'944;
    };
    return std::ranges::any_of(w.browser->Seen().messages, told);
  })) << w.server.Dialogue();
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

// Whatever the server holds back: the connection stays, and the next request is not touched.
TEST(ControlLooper, StopsTheRequestInHand) {
  struct Case {
    std::uint32_t request;
    std::pair<const char*, std::string> field;
    const char* verb;
    int occurrence;
    ScriptedAction held;
    const char* status;
  };
  const Case cases[] = {
      {"HSYM"_what, {"sym", "l"}, "SIZE", 1, {.reply = "213 7\r\n", .late = true}, "Stopped."},
      {"DELE"_what, {"name", "a"}, "DELE", 1, {.reply = "550 No.\r\n", .late = true}, "Stopped."},
      {"CRDR"_what, {"", ""}, "LIST", 2, {.dataLimit = 3, .dataEnd = DataEnd::Stall}, "Stopped."},
      {"PCHN"_what,
       {"cwd", "d"},
       "LIST",
       2,
       {.dataLimit = 3, .dataEnd = DataEnd::Stall},
       "Stopped before the listing came."},
      {"VWFL"_what,
       {"file", "a"},
       "RETR",
       1,
       {.dataLimit = 1, .dataEnd = DataEnd::Stall},
       "Stopped."},
  };
  for (const Case& c : cases) {
    Window w;
    w.server.Tree().AddFile("/a", "123");
    w.server.Tree().AddDirectory("/d");
    w.Connect();
    ASSERT_TRUE(w.Shows("/", {"a", "d"}) && w.Answered(1));
    w.looper->Stop();
    std::atomic<bool> arrived = false;
    ScriptedAction held = c.held;
    held.arrived = [&] { arrived = true; };
    w.server.On(c.verb, held, c.occurrence);
    w.Post(c.request, "/", {c.field});
    ASSERT_TRUE(WaitFor([&] { return arrived.load(); })) << c.verb << w.server.Dialogue();
    w.looper->Stop();
    EXPECT_TRUE(w.Answered(2) && w.Ends(c.status)) << c.verb << w.server.Dialogue();
    w.looper->Stop();
    w.server.Tree().AddFile("/new", "1");
    w.Post("PCHN"_what, "/", {{"cwd", "/"}});
    EXPECT_TRUE(w.Shows("/", {"a", "d", "new"})) << c.verb << w.server.Dialogue();
    EXPECT_TRUE(w.Warned(0) && w.Warned(0, kLost)) << w.server.Dialogue();
  }
  Window w;
  std::atomic<bool> arrived = false;
  w.server.On("greeting", {.arrived = [&] { arrived = true; }, .reply = ""}, 1);
  w.Connect();
  ASSERT_TRUE(WaitFor([&] { return arrived.load(); }));
  w.looper->Stop();
  EXPECT_TRUE(w.Answered(1) && w.Ends("Stopped."));
  w.Post("CNNT"_what, "");
  EXPECT_TRUE(w.Shows("/", {}));
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
