#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "ftp/MFtp.h"
#include "remote/Permissions.h"
#include "support/RecordingBrowserUi.h"
#include "support/ScriptedServer.h"
#include "support/WaitFor.h"
#include "workers/RightsChanger.h"
#include "workers/TreeCounter.h"
#include "workers/TreeFinder.h"

namespace corvane {
namespace {

using Kind = RemoteEntry::Kind;

struct Notes : WalkUi {
  bool Found(std::vector<FoundEntry> entries) override {
    const MutexLock hold(lock);
    for (const FoundEntry& one : entries) found.insert(one.directory + "|" + one.entry.name);
    return true;
  }
  void Ended(const WalkEnd& how) override {
    const MutexLock hold(lock);
    end = how;
    over = true;
  }
  [[nodiscard]] std::string Names() {
    const MutexLock hold(lock);
    std::string names;
    for (const std::string& name : found) names += (names.empty() ? "" : " ") + name;
    return names;
  }
  Mutex lock;
  std::set<std::string> found;
  WalkEnd end;
  std::atomic<bool> over{false};
};

/// A server, a window's session with it, and a pool of more.
struct Walk : testing::Test {
  Walk() {
    server.On("SITE", {.reply = "200 Done\r\n"});
    session = std::make_shared<MFtp>(server.Where(true), window);
    EXPECT_TRUE(session->Connect().IsDone());
  }
  TreeWalk::Ways Ways(int connections = 3) {
    return {server.Where(true), pool, session, window, connections};
  }
  void Run(TreeWalk& walk) {
    EXPECT_TRUE(walk.Run());
    EXPECT_TRUE(WaitFor([&] { return notes->over.load(); })) << server.Dialogue();
  }
  std::shared_ptr<TreeFinder> Finder(FindRule rule = {}, const std::string& directory = "/") {
    notes = std::make_shared<Notes>();
    return std::make_shared<TreeFinder>(Ways(), notes, directory, std::move(rule));
  }
  std::shared_ptr<RightsChanger> Changer(RightsOrder order) {
    notes = std::make_shared<Notes>();
    order.directory = "/";
    return std::make_shared<RightsChanger>(Ways(), notes, std::move(order));
  }
  /// The modes and names of the commands since the last call, sorted where `inOrder` is not wanted.
  std::string Changed(bool inOrder = false) {
    std::vector<std::string> all;
    const std::vector<std::string> lines = server.Transcript();
    for (; heard < lines.size(); ++heard) {
      const std::string& line = lines[heard];
      if (line.starts_with("SITE CHMOD ")) all.push_back(line.substr(11, line.size() - 13));
    }
    if (!inOrder) std::ranges::sort(all);
    std::string text;
    for (const std::string& one : all) text += (text.empty() ? "" : "|") + one;
    return text;
  }

  std::size_t heard = 0;
  ScriptedServer server;
  std::shared_ptr<RecordingBrowserUi> window = std::make_shared<RecordingBrowserUi>();
  std::shared_ptr<MFtp> session;
  std::shared_ptr<SessionPool> pool = std::make_shared<SessionPool>(
      [](const Site& site, std::shared_ptr<OwnerUi> owner, std::shared_ptr<Habits> habits) {
        return std::make_shared<MFtp>(site, std::move(owner), nullptr, std::move(habits));
      });
  std::shared_ptr<Notes> notes = std::make_shared<Notes>();
};

TEST(NamePatternTest, FitsAsReadersExpect) {
  const std::tuple<const char*, const char*, bool, bool> rows[] = {
      {"", "any", true, true},
      {"read", "README.txt", true, false},
      {"*.TXT", "readme.txt", true, false},
      {"*.txt", "a.txt.old", false, false},
      {"?", "\xC3\xA4", true, true},
      {"\xC3\x84*", "\xC3\xA4pfel", true, false},
      {"a*b*c", "axxbxbyc", true, true},
      {"a*b*c", "axxbxby", false, false},
      {"*", "", true, true},
      {"?", "\xFF", true, true},
      {"[a]", "x[a]y", true, true},
      {"**a??", "za12", true, true},
  };
  for (const auto& [pattern, name, fits, withCase] : rows) {
    EXPECT_EQ(NamePattern(pattern).Fits(name), fits) << pattern << " " << name;
    EXPECT_EQ(NamePattern(pattern, true).Fits(name), withCase) << pattern << " " << name;
  }
}

TEST(FindRuleTest, AsksEveryFact) {
  const auto at = [](std::int64_t seconds) { return RemoteTime{.seconds = seconds}; };
  const RemoteEntry file{.name = "f", .size = 100, .modified = at(5'000)};
  const RemoteEntry bare{.name = "f"};
  const RemoteEntry folder{.name = "f", .kind = Kind::Directory, .modified = at(5'000)};
  const std::tuple<FindRule, bool, bool, bool> rows[] = {
      {{.least = 100}, true, false, false},
      {{.least = 101}, false, false, false},
      {{.most = 100}, true, false, false},
      {{.most = 99}, false, false, false},
      {{.from = 5'000, .before = 5'001}, true, false, true},
      {{.before = 5'000}, false, false, false},
      {{.from = 5'001}, false, false, false},
      {{.kind = Kind::Directory}, false, false, true},
      {{}, true, true, true},
  };
  for (const auto& [rule, ofFile, ofBare, ofFolder] : rows) {
    EXPECT_EQ(rule.Fits(file), ofFile);
    EXPECT_EQ(rule.Fits(bare), ofBare);
    EXPECT_EQ(rule.Fits(folder), ofFolder);
  }
}

TEST(PermissionsTest, ReadsAndWritesBits) {
  const std::tuple<const char*, std::optional<unsigned>, const char*> rows[] = {
      {"-rw-r--r--", 0644, "644"},   {"drwxr-sr-x", 02755, "2755"},
      {"-rwSr--r-T", 05644, "5644"}, {"-rwsr-xr-t", 05755, "5755"},
      {"----------", 0, "000"},      {"drwxr-xr-x+", 0755, "755"},
      {"rw-r--r--", {}, ""},         {"", {}, ""},
  };
  for (const auto& [mode, bits, octal] : rows) {
    EXPECT_EQ(Permissions::Bits(mode), bits) << mode;
    EXPECT_EQ(Permissions::Octal(mode), octal) << mode;
    EXPECT_EQ(Permissions::FromOctal(octal), bits) << mode;
  }
  for (const char* bad : {"8", "64", "689", "07777", "6 4", "-64"})
    EXPECT_FALSE(Permissions::FromOctal(bad)) << bad;
}

TEST(RightsChangeTest, KeepsWhatItIsNotAbout) {
  struct Row {
    RightsChange change;
    std::optional<unsigned> now;
    bool keepsExecute;
    std::optional<unsigned> then;
  };
  const Row rows[] = {
      {{0777, 0644}, 04755, false, 04644},      {{07777, 0644}, 04755, false, 0644},
      {{0020, 0020}, 0644, false, 0664},        {{0020, 0020}, std::nullopt, false, std::nullopt},
      {{0777, 0755}, 0644, true, 0644},         {{0777, 0755}, 0700, true, 0755},
      {{0777, 0755}, std::nullopt, true, 0644}, {{0777, 0640}, 0755, true, 0640},
  };
  for (const Row& row : rows) EXPECT_EQ(row.change.Of(row.now, row.keepsExecute), row.then);
}

TEST_F(Walk, FindsBelowADirectoryAndEntersNothingTwice) {
  server.Tree().AddFile("/top/a.txt", "12345");
  server.Tree().AddFile("/top/sub/b.TXT", "1");
  server.Tree().AddFile("/top/sub/deep/c.bin", "1");
  server.Tree().AddLink("/top/sub/back.txt", "/top");
  server.Tree().AddFile("/outside.txt", "");
  for (int i = 0; i < 20; ++i)
    server.Tree().AddFile("/top/many" + std::to_string(i) + "/x.txt", "");
  const auto finder = Finder({.name = NamePattern("*.txt")}, "/top");
  Run(*finder);
  EXPECT_EQ(notes->found.size(), 23U) << notes->Names();
  EXPECT_TRUE(notes->found.contains("/top/sub|b.TXT"));
  EXPECT_TRUE(notes->found.contains("/top/sub|back.txt"));
  EXPECT_EQ(notes->progress.directories, 23);
  EXPECT_TRUE(notes->end.outcome.IsDone() && notes->end.bound.IsEmpty());
  EXPECT_EQ(notes->end.refused, 0U) << notes->end.refusals.English();
}

// A server that lists a link as a directory.
TEST_F(Walk, LeavesAloneWhatLeadsElsewhere) {
  server.Tree().AddLink("/top/loop", "/top");
  server.On("LIST", {.data = "drwxr-xr-x 1 ftp ftp 0 Jan 12 12:34 loop\r\n"});
  const auto finder = Finder({}, "/top");
  Run(*finder);
  EXPECT_EQ(notes->end.refusals.English(), "loop: Left alone, for it leads to /top");
  EXPECT_EQ(notes->progress.directories, 1);
}

// Entries that the listing does not tell, and a listing that somebody else breaks off.
TEST_F(Walk, TellsWhatAListingLeavesOut) {
  const std::string line = "-rw-r--r-- 1 ftp ftp 0 Jan 12 12:34 ";
  const std::string tooLong(5'000, 'x');
  server.On("LIST",
            {.data = line + "f\r\n" + line + tooLong + "\r\n" + line + tooLong + "y\r\n?!\r\n"}, 2);
  const std::weak_ptr<MFtp> weak = session;
  const auto interrupt = [weak] {
    if (const auto held = weak.lock()) held->Interrupt();
  };
  server.On("LIST", {.arrived = interrupt, .reply = ""}, 1);
  const auto finder = std::make_shared<TreeFinder>(Ways(0), notes, "/", FindRule());
  Run(*finder);
  EXPECT_EQ(notes->Names(), "/|f") << server.Dialogue();
  EXPECT_EQ(notes->end.refused, 2U);
  EXPECT_EQ(notes->progress.failed, 2);
  EXPECT_EQ(notes->end.refusals.English(),
            "/: Entries with names longer than 4096 bytes are not shown: 2\n"
            "Lines of the listing that are not understood: 1");
}

// A directory at which the connection is lost each time does not end the walk.
TEST_F(Walk, GivesUpOnlyWhatIsLostThrice) {
  for (const char* path : {"/a/1", "/b/2", "/c/3"}) server.Tree().AddFile(path, "");
  for (int i = 2; i <= 4; ++i) server.On("LIST", {.reply = "", .control = ControlEnd::Reset}, i);
  TreeWalk::Ways ways = Ways(1);
  ways.session = nullptr;
  const auto finder =
      std::make_shared<TreeFinder>(std::move(ways), notes, "/", FindRule{.kind = Kind::File});
  Run(*finder);
  EXPECT_EQ(notes->Names(), "/b|2 /c|3") << server.Dialogue();
  EXPECT_EQ(notes->end.refused, 1U) << notes->end.refusals.English();
  EXPECT_TRUE(notes->end.outcome.IsDone()) << notes->end.outcome.text.English();
}

TEST_F(Walk, StopsWhereItIsBounded) {
  for (int i = 0; i < 30; ++i) server.Tree().AddFile("/d/e/f" + std::to_string(i), "");
  auto finder = Finder();
  finder->mostFound = 10;
  Run(*finder);
  EXPECT_EQ(notes->found.size(), 10U);
  EXPECT_EQ(notes->end.bound.English(), "It stopped after 10 were found.");
  finder = Finder();
  finder->limits.entries = 20;
  Run(*finder);
  EXPECT_EQ(notes->end.bound.English(), "It stopped after 20 entries, in /d/e.");
  finder = Finder();
  finder->limits.depth = 1;
  Run(*finder);
  EXPECT_EQ(notes->Names(), "/d|e /|d");
  EXPECT_EQ(notes->end.refusals.English(), "d/e: The directories are nested too deeply.");
}

TEST_F(Walk, GoesOnWithWhatTheServerRefusesOrLoses) {
  for (const char* path : {"/a/1", "/b/2", "/c/3"}) server.Tree().AddFile(path, "");
  server.On("CWD", {.reply = "550 Closed to you\r\n"}, 2);
  server.On("LIST", {.reply = "", .control = ControlEnd::Reset}, 3);
  const auto finder = Finder({.kind = Kind::File});
  Run(*finder);
  EXPECT_EQ(notes->found.size(), 2U) << server.Dialogue();
  EXPECT_EQ(notes->end.refused, 1U) << notes->end.refusals.English();
  EXPECT_TRUE(notes->end.outcome.IsDone()) << notes->end.outcome.text.English();
}

// A server that lets nobody in twice, and one that lets nobody in any more.
TEST_F(Walk, MakesDoWithTheWindowsConnection) {
  for (int i = 0; i < 9; ++i) server.Tree().AddFile("/d" + std::to_string(i) + "/f", "");
  server.On("USER", {.reply = "530 Too many connections\r\n"});
  auto finder = Finder({.kind = Kind::File});
  Run(*finder);
  EXPECT_EQ(notes->found.size(), 9U) << server.Dialogue();
  EXPECT_TRUE(notes->end.outcome.IsDone());
  session->Close();
  finder = Finder();
  Run(*finder);
  EXPECT_FALSE(notes->end.outcome.IsDone());
  EXPECT_FALSE(notes->end.outcome.text.IsEmpty());
}

TEST_F(Walk, IsStoppedAtOnceAndLeavesTheWindowItsConnection) {
  std::atomic<bool> arrived = false;
  for (int i = 0; i < 40; ++i) server.Tree().AddFile("/d" + std::to_string(i) + "/f", "");
  server.On("LIST", {.arrived = [&] { arrived = true; }, .reply = ""}, 2);
  const auto finder = Finder();
  EXPECT_TRUE(finder->Run());
  EXPECT_TRUE(WaitFor([&] { return arrived.load(); }));
  finder->Cancel();
  EXPECT_TRUE(WaitFor([&] { return notes->over.load(); }));
  EXPECT_EQ(notes->end.outcome.kind, Outcome::Kind::Cancelled);
  const EngineLease lease(*session);
  EXPECT_TRUE(session->KeepAlive().IsDone()) << server.Dialogue();
}

TEST_F(Walk, CountsWhatADirectoryHolds) {
  server.Tree().AddFile("/top/a", "12345");
  server.Tree().AddFile("/top/sub/b", "123");
  server.Tree().AddFile("/other/c", "1");
  const auto counter =
      std::make_shared<TreeCounter>(Ways(), notes, "/", std::vector<std::string>{"top"});
  Run(*counter);
  EXPECT_EQ(notes->progress.files, 2);
  EXPECT_EQ(notes->progress.folders, 1);
  EXPECT_EQ(notes->progress.bytes, 8);
}

// All that is there is rwxr-xr-x.
TEST_F(Walk, ChangesRightsOfWhatItIsAbout) {
  server.Tree().AddFile("/top/f", "");
  server.Tree().AddFile("/top/sub/g", "");
  server.Tree().AddLink("/top/sub/link", "/top");
  const RemoteEntry top{.name = "top", .kind = Kind::Directory, .mode = "drwxr-xr-x"};
  const RemoteEntry link{.name = "l", .kind = Kind::Link, .mode = "lrwxrwxrwx"};
  using Below = RightsOrder::Below;
  const std::tuple<Below, RightsChange, std::string> rows[] = {
      {Below::Nothing, {0777, 0750}, "750 top"},
      {Below::Everything, {0777, 0750}, "750 f|750 g|750 sub|750 top"},
      {Below::Files, {0777, 0640}, "640 f|640 g"},
      {Below::Directories, {0777, 0700}, "700 sub|700 top"},
      {Below::Everything, {0020, 0020}, "775 f|775 g|775 sub|775 top"},
      {Below::Everything, {0777, 0755}, "755 top"},
  };
  for (const auto& [below, change, sent] : rows) {
    const auto changer = Changer({.entries = {top, link}, .rights = change, .below = below});
    Run(*changer);
    EXPECT_EQ(Changed(), sent);
    EXPECT_EQ(notes->progress.changed, 1 + std::ranges::count(sent, '|'));
  }
}

// A server that lists a link as a directory, and one that does not take the arguments once.
TEST_F(Walk, ChangesNothingElsewhere) {
  server.Tree().AddLink("/top/loop", "/");
  server.On("LIST", {.data = "drwxr-xr-x 1 ftp ftp 0 Jan 12 12:34 loop\r\n"
                             "-rw-r--r-- 1 ftp ftp 0 Jan 12 12:34 f\r\n"});
  server.On("SITE", {.reply = "501 Not so\r\n"}, 1);
  const RemoteEntry top{.name = "top", .kind = Kind::Directory, .mode = "drwxr-xr-x"};
  for (const unsigned mode : {0750U, 0600U}) {
    const auto changer = Changer({.entries = {top},
                                  .rights = RightsChange{0777, mode},
                                  .below = RightsOrder::Below::Everything});
    Run(*changer);
    EXPECT_EQ(Changed(), mode == 0750 ? "640 f|750 top" : "600 f|600 top");
    EXPECT_EQ(notes->end.refused, mode == 0750 ? 2U : 1U) << notes->end.refusals.English();
    EXPECT_TRUE(notes->end.outcome.IsDone());
  }
}

// What shuts a directory comes once all that is in it is changed, the deepest first.
TEST_F(Walk, ShutsDirectoriesLast) {
  server.Tree().AddFile("/top/sub/f", "");
  const RemoteEntry top{.name = "top", .kind = Kind::Directory, .mode = "drwxr-xr-x"};
  const auto changer = Changer({.entries = {top},
                                .rights = RightsChange{0777, 0600},
                                .below = RightsOrder::Below::Everything});
  Run(*changer);
  EXPECT_EQ(Changed(true), "600 f|600 sub|600 top");
}

TEST_F(Walk, TellsWhatWasRefused) {
  for (const char* path : {"/top/f", "/top/g"}) server.Tree().AddFile(path, "");
  const RemoteEntry top{.name = "top", .kind = Kind::Directory, .mode = "drwxr-xr-x"};
  const RemoteEntry bare{.name = "bare"};
  server.On("SITE", {.reply = "550 Not yours\r\n"}, 3);
  auto changer = Changer({.entries = {top, bare},
                          .rights = RightsChange{0020, 0020},
                          .below = RightsOrder::Below::Everything,
                          .time = 1'000'000'000});
  Run(*changer);
  EXPECT_EQ(notes->progress.changed, 2) << server.Dialogue();
  const std::string lines = notes->end.refusals.English();
  EXPECT_NE(lines.find("bare: The server does not tell its permissions."), lines.npos) << lines;
  EXPECT_NE(lines.find("top/g: "), lines.npos) << lines;
  EXPECT_NE(lines.find("top: The server cannot set a file's time."), lines.npos) << lines;
  EXPECT_EQ(notes->end.refused, 4U);
}

TEST_F(Walk, EndsWhereTheServerCannotChangeAny) {
  for (int i = 0; i < 9; ++i) server.Tree().AddFile("/top" + std::to_string(i) + "/f", "");
  server.On("SITE", {.reply = "500 What?\r\n"});
  std::vector<RemoteEntry> tops;
  for (int i = 0; i < 9; ++i)
    tops.push_back({.name = "top" + std::to_string(i), .kind = Kind::Directory});
  const auto changer = Changer(
      {.entries = tops, .rights = RightsChange{0777, 0644}, .below = RightsOrder::Below::Files});
  Run(*changer);
  EXPECT_EQ(notes->end.outcome.kind, Outcome::Kind::Refused);
  EXPECT_EQ(notes->end.outcome.text.English(), "This server cannot change permissions.\n\nWhat?");
}

}  // namespace
}  // namespace corvane
