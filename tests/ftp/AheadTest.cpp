#include <future>

#include "ftp/Session.h"
#include "support/WaitFor.h"

namespace corvane {
namespace {

using namespace std::chrono_literals;
using Learned = Habits::Learned;

/// A session that shares what is learned, and moves the file "/f".
struct Sharer {
  explicit Sharer(Session& session, bool passive = true)
      : s(session), engine(session.server.Where(passive), session.ui, {}, habits) {
    engine.SetWaits(Waits::All(1'000));
  }
  /// Nothing more is known afterwards than before.
  void LogIn() {
    const Learned before = habits->takesAhead;
    habits->takesAhead = Learned::No;
    EXPECT_TRUE(engine.Connect().IsDone());
    habits->takesAhead = before;
    s.skip = s.server.Transcript().size();
  }
  Outcome Get(bool more) {
    std::unique_ptr<RemoteFile> file;
    raw.clear();
    Outcome outcome = engine.OpenForReading("/f", 0, file);
    char block[100];
    for (std::size_t got = 1; outcome.IsDone() && got > 0;) {
      outcome = file->Read(block, got);
      raw.append(block, got);
    }
    return outcome.IsDone() ? file->Finish({.more = more}, settled) : outcome;
  }
  Outcome Put(const std::string& bytes) {
    std::unique_ptr<RemoteFile> file;
    Outcome outcome = engine.OpenForWriting("/f", 0, file);
    if (outcome.IsDone()) outcome = file->Write(bytes);
    if (!outcome.IsDone()) return outcome;
    return file->Finish({.setTime = 1'000'000'000, .askSize = true, .more = true}, settled);
  }
  [[nodiscard]] bool IsInStep() {
    std::optional<std::int64_t> size;
    const Outcome outcome = engine.Size("/in step", size);
    return outcome.text.English() == "Cannot do that.";
  }

  Session& s;
  std::shared_ptr<Habits> habits = std::make_shared<Habits>();
  MFtp engine;
  RemoteFile::Settled settled;
  std::string raw;
};

// A server that dislikes what comes ahead at the login is logged in to all the same, and a second
// session asks it for less.
TEST(Ahead, IsTriedAtTheLogin) {
  const std::string first = "FEAT|USER u|PASS p|OPTS UTF8 ON|SYST|PWD|TYPE I";
  const std::string next = "USER u|PASS p|OPTS UTF8 ON|PWD|TYPE I|CWD d|PWD|";
  const std::string again = first + "|OPTS UTF8 ON|SYST|PWD|TYPE I|" + next;
  struct Row {
    const char* verb;
    ScriptedAction action;
    std::string sent;
    Learned learned;
  };
  const Row rows[] = {
      {"PWD", {}, first + "|" + next, Learned::Yes},
      {"TYPE", {.reply = "550 Never\r\n"}, first + "|" + next, Learned::Yes},
      {"PWD", {.reply = "503 Not now\r\n"}, again, Learned::No},
      {"SYST", {.reply = "257 \"/\"\r\n"}, again, Learned::No},
      {"TYPE",
       {.reply = ""},
       first + "|NOOP|PWD|OPTS UTF8 ON|SYST|PWD|TYPE I|" + next,
       Learned::No},
      {"SYST",
       {.reply = "", .control = ControlEnd::Close},
       "FEAT|USER u|PASS p|OPTS UTF8 ON|SYST|USER u|PASS p|OPTS UTF8 ON|SYST|PWD|TYPE I|" + next,
       Learned::No},
  };
  for (const Row& row : rows) {
    Session s;
    Sharer sharer(s);
    s.server.Tree().AddDirectory("/d");
    s.server.On("FEAT", {.reply = "211-Has\r\n UTF8\r\n211 End\r\n"});
    s.server.On("OPTS", {.reply = "200 On\r\n"});
    s.server.On(row.verb, row.action, 1);
    EXPECT_TRUE(sharer.engine.Connect().IsDone()) << s.server.Dialogue();
    EXPECT_EQ(sharer.engine.Directory(), "/");
    EXPECT_EQ(sharer.habits->takesAhead, row.learned) << s.server.Dialogue();
    EXPECT_TRUE(sharer.IsInStep()) << s.server.Dialogue();
    MFtp other(s.server.Where(true), s.ui, {}, sharer.habits);
    std::string where;
    EXPECT_TRUE(other.Connect().IsDone()) << s.server.Dialogue();
    EXPECT_TRUE(other.Enter("/d", where).IsDone()) << s.server.Dialogue();
    EXPECT_EQ(where, "/d");
    std::string sent = s.Sent();
    if (const auto at = sent.find("SIZE in step|"); at != std::string::npos) sent.erase(at, 13);
    EXPECT_EQ(sent + "|", row.sent) << s.server.Dialogue();
  }
}

// Whatever becomes of a command that comes before the end of a download: the file counts, and the
// next one comes too.
TEST(Ahead, IsLearnedFromADownload) {
  const std::string asked = "PASV|RETR f|PASV|RETR f";
  const std::string again = "PASV|RETR f|PASV|PASV|RETR f";
  const ScriptedAction silent = {.completion = ""};
  // Of the first RETR, and of the PASV that is sent along with its end.
  const std::tuple<ScriptedAction, ScriptedAction, std::string, std::string, Learned> rows[] = {
      {{}, {}, "Done", asked, Learned::Yes},
      {{}, {.reply = "450 Not now\r\n"}, "Done", again, Learned::No},
      {silent, {.reply = "503 Not now\r\n226 Done\r\n"}, "Done", again, Learned::No},
      {silent, {.reply = "227 (127,0,0,1,{port})\r\n226 Done\r\n"}, "Done", again, Learned::No},
      {silent, {.reply = "227 (127,0,0,1,{port})\r\n451 No\r\n"}, "Refused", again, Learned::No},
      {{}, {.reply = ""}, "Done", "PASV|RETR f|PASV|NOOP|PWD|PASV|RETR f", Learned::No},
      {{}, {.late = true}, "Done", "PASV|RETR f|PASV|NOOP|PASV|RETR f", Learned::No},
      {{.completion = "451 No\r\n"}, {}, "Refused", again, Learned::Yes},
      // A port where nobody listens.
      {{}, {.reply = "227 (127,0,0,1,0,1)\r\n"}, "Done", asked + "|PASV|RETR f", Learned::No},
  };
  for (const auto& [retr, pasv, told, sent, learned] : rows) {
    Session s;
    Sharer sharer(s);
    s.server.Tree().AddFile("/f", "bytes");
    s.server.On("RETR", retr, 1);
    s.server.On("PASV", pasv, 2);
    const std::string port = pasv.reply.value_or("");
    if (port.ends_with(",0,1)\r\n")) s.server.On("RETR", {.reply = "425 No\r\n"}, 2);
    sharer.LogIn();
    EXPECT_TRUE(Told(sharer.Get(true)).starts_with(told)) << s.server.Dialogue();
    EXPECT_EQ(Told(sharer.Get(false)), "Done") << s.server.Dialogue();
    EXPECT_EQ(sharer.raw, "bytes");
    EXPECT_EQ(s.Sent(), sent) << s.server.Dialogue();
    EXPECT_EQ(sharer.habits->takesAhead, learned) << s.server.Dialogue();
    EXPECT_TRUE(sharer.IsInStep()) << s.server.Dialogue();
  }
}

// What was whole before the connection went is whole.
TEST(Ahead, LosesNoFileWithTheConnection) {
  Session s;
  Sharer sharer(s);
  s.server.Tree().AddFile("/f", "bytes");
  s.server.On("PASV", {.reply = "", .control = ControlEnd::Close}, 2);
  sharer.LogIn();
  EXPECT_EQ(Told(sharer.Get(true)), "Done");
  EXPECT_TRUE(sharer.engine.IsLost());
  EXPECT_EQ(sharer.habits->takesAhead, Learned::No);
}

TEST(Ahead, SetsTimeAndAsksSizeWithTheEndOfAnUpload) {
  const std::string mfmt = "MFMT 20010909014640 f";
  const std::string all = mfmt + "|SIZE f|PASV";
  const ScriptedAction silent = {.completion = ""};
  const ScriptedAction done = {.reply = "213 Modify=20010909014640; f\r\n"};
  const ScriptedAction busy = {.reply = "450 Wait\r\n226 Done\r\n"};
  const auto size = [](const char* number) { return ScriptedAction{.reply = number}; };
  struct Row {
    Learned before;
    ScriptedAction stor, mfmt, firstSize, pasv;
    std::string told, sent;
    Learned after, waits;
  };
  // Of two uploads; what is told, and asked with PASV, is of the first.
  const Row rows[] = {
      {Learned::Unknown,
       {},
       done,
       {},
       {},
       "Done",
       "PASV|STOR f|PASV|" + mfmt + "|SIZE f|STOR f|" + all,
       Learned::Yes,
       Learned::Unknown},
      {Learned::Yes,
       {},
       done,
       {},
       {},
       "Done",
       "PASV|STOR f|" + all + "|STOR f|" + all,
       Learned::Yes,
       Learned::Unknown},
      {Learned::No,
       {},
       done,
       {},
       {},
       "Done",
       "PASV|STOR f|" + mfmt + "|SIZE f|PASV|STOR f|" + mfmt + "|SIZE f",
       Learned::No,
       Learned::Unknown},
      // A server that looks at commands in the middle of an upload, and one that ends it for them.
      {Learned::Yes, silent, done, size("213 1\r\n"), busy, "Done",
       "PASV|STOR f|" + all + "|SIZE f|" + all + "|STOR f|" + all, Learned::Yes, Learned::Yes},
      {Learned::Yes,
       {.dataLimit = 3, .completion = ""},
       done,
       size("213 1\r\n"),
       busy,
       "Busy: The server has 3 of 5 bytes.",
       "PASV|STOR f|" + all + "|SIZE f|PASV|STOR f|" + all,
       Learned::Yes,
       Learned::Yes},
      // One that forgets what comes meanwhile.
      {Learned::Yes,
       {},
       done,
       size(""),
       {.reply = ""},
       "Done",
       "PASV|STOR f|" + all + "|NOOP|PWD|SIZE f|" + all + "|STOR f|" + all,
       Learned::Yes,
       Learned::Yes},
      // It knows the way no more.
      {Learned::Yes,
       {},
       {.reply = "500 What?\r\n"},
       {},
       {},
       "Done",
       "PASV|STOR f|" + all + "|STOR f|SIZE f|PASV",
       Learned::Yes,
       Learned::Unknown},
  };
  for (const Row& row : rows) {
    Session s;
    Sharer sharer(s);
    sharer.habits->takesAhead = row.before;
    sharer.habits->passive = row.before == Learned::Unknown ? Learned::Unknown : Learned::Yes;
    s.server.On("FEAT", {.reply = "211-Has\r\n MFMT\r\n211 End\r\n"});
    s.server.On("STOR", row.stor, 1);
    s.server.On("MFMT", row.mfmt);
    if (row.firstSize.reply) s.server.On("SIZE", row.firstSize, 1);
    s.server.On("PASV", row.pasv, 2);
    sharer.LogIn();
    EXPECT_EQ(Told(sharer.Put("bytes")), row.told) << s.server.Dialogue();
    const bool whole = row.told == "Done";
    EXPECT_EQ(sharer.settled.size, whole ? std::optional<std::int64_t>(5) : std::nullopt);
    EXPECT_EQ(Told(sharer.Put("more")), "Done") << s.server.Dialogue();
    EXPECT_EQ(sharer.settled.size, 4);
    EXPECT_EQ(sharer.settled.time && sharer.settled.time->IsDone(), row.mfmt.reply == done.reply);
    EXPECT_EQ(s.Sent(), row.sent) << s.server.Dialogue();
    EXPECT_EQ(sharer.habits->takesAhead, row.after);
    EXPECT_EQ(sharer.habits->waitsForUploads, row.waits);
    EXPECT_TRUE(sharer.IsInStep()) << s.server.Dialogue();
  }
}

TEST(Ahead, RemovesManyFilesAndTellsEachItsOwn) {
  const std::string no = "Refused: Cannot do that.";
  const std::string badName = "LocalError: A name or text with a line break cannot be sent";
  struct Row {
    Learned before;
    std::vector<std::string> names;
    int which;  // DELE has the action
    ScriptedAction action;
    bool removed;  // all the same
    std::string told, sent;
    Learned after;
  };
  const std::string five = "DELE a|DELE b|DELE c|DELE d|DELE e";
  const std::vector<std::string> names = {"/a", "/b", "/c", "/d", "/e"};
  const Row rows[] = {
      {Learned::Unknown, names, 9, {}, false, "", five, Learned::Yes},
      {Learned::Yes,
       {"/a", "/x", "/dir/f", "/b"},
       9,
       {},
       false,
       "1",
       "DELE a|DELE x|CWD dir|DELE f|CWD ..|DELE b",
       Learned::Yes},
      {Learned::Yes, {"/a", "/b\n", "/c"}, 9, {}, false, "L", "DELE a|DELE c", Learned::Yes},
      {Learned::Unknown,
       names,
       2,
       {.reply = "503 Wait\r\n"},
       false,
       "",
       "DELE a|DELE b|DELE b|DELE c|DELE d|DELE e",
       Learned::No},
      {Learned::Unknown,
       names,
       2,
       {.reply = ""},
       true,
       "",
       "DELE a|DELE b|NOOP|PWD|DELE b|SIZE b|DELE c|DELE d|DELE e",
       Learned::No},
      // Which one was not answered is not known.
      {Learned::Yes,
       names,
       3,
       {.reply = ""},
       false,
       "",
       five + "|NOOP|PWD|DELE b|SIZE b|DELE c|DELE d|SIZE d|DELE e|SIZE e",
       Learned::No},
      {Learned::Yes, names, 3, {.reply = "421 Bye\r\n"}, false, "G", five, Learned::Yes},
  };
  for (const Row& row : rows) {
    Session s;
    Sharer sharer(s);
    sharer.habits->takesAhead = row.before;
    s.server.Tree().AddDirectory("/dir");
    for (const char* path : {"/a", "/b", "/c", "/d", "/e", "/dir/f"})
      s.server.Tree().AddFile(path, "");
    ScriptedAction action = row.action;
    if (row.removed) action.arrived = [&] { s.server.Tree().Remove("/b", false); };
    s.server.On("DELE", action, row.which);
    sharer.LogIn();
    std::string told;
    (void)sharer.engine.RemoveFiles(row.names, [&](std::size_t which, const Outcome& outcome) {
      const std::string text = Told(outcome);
      if (text == no) told += std::to_string(which);
      if (text.starts_with(badName) && which == 1) told += "L";
      if (outcome.kind == Outcome::Kind::Lost && which == 2) told += "G";
      return true;
    });
    EXPECT_EQ(told, row.told) << s.server.Dialogue();
    if (row.told != "G") EXPECT_EQ(s.Sent(), row.sent) << s.server.Dialogue();
    EXPECT_EQ(sharer.engine.HowLost().maybeChanged, row.told == "G");
    EXPECT_EQ(sharer.habits->takesAhead, row.after);
    EXPECT_EQ(sharer.IsInStep(), row.told != "G") << s.server.Dialogue();
  }
}

// A server that cannot change permissions is asked once; one that refuses an entry goes on.
TEST(Ahead, ChangesManyModesAndTellsEachItsOwn) {
  struct Row {
    Learned before;
    int which;  // SITE has the reply
    ScriptedAction action;
    std::string told, sent, ended;
    Learned after;
  };
  const std::string two = "SITE CHMOD 644 a|SITE CHMOD 4755 b";
  const std::string all = two + "|CWD dir|SITE CHMOD 700 f";
  const std::string cannot = "Refused: This server cannot change permissions.\n\n";
  const Row rows[] = {
      {Learned::Unknown, 9, {}, "DDD", all, "Done", Learned::Yes},
      {Learned::No, 9, {}, "DDD", all, "Done", Learned::No},
      {Learned::Yes, 2, {.reply = "550 Not yours\r\n"}, "DRD", all, "Done", Learned::Yes},
      {Learned::Yes,
       2,
       {.reply = "500 Bad name\r\n"},
       "DDD",
       two + "|SITE CHMOD 4755 b|CWD dir|SITE CHMOD 700 f",
       "Done",
       Learned::No},
      {Learned::No,
       1,
       {.reply = "500 What?\r\n"},
       "",
       "SITE CHMOD 644 a",
       cannot + "What?",
       Learned::No},
      {Learned::No,
       1,
       {.reply = "202 Needless\r\n"},
       "",
       "SITE CHMOD 644 a",
       cannot + "Needless",
       Learned::No},
      {Learned::Unknown,
       2,
       {.reply = ""},
       "DDD",
       two + "|NOOP|PWD|SITE CHMOD 4755 b|CWD dir|SITE CHMOD 700 f",
       "Done",
       Learned::No},
      {Learned::Yes, 2, {.reply = "421 Bye\r\n"}, "DL", two, "Lost", Learned::Yes},
  };
  const ModeChange changes[] = {{"/a", 0644}, {"/b", 04755}, {"/dir/f", 0700}};
  for (const Row& row : rows) {
    Session s;
    Sharer sharer(s);
    sharer.habits->takesAhead = row.before;
    s.server.Tree().AddDirectory("/dir");
    s.server.On("SITE", {.reply = "200 Done\r\n"});
    s.server.On("SITE", row.action, row.which);
    sharer.LogIn();
    std::string told;
    const auto each = [&](std::size_t, const Outcome& outcome) {
      return told += Told(outcome)[0], true;
    };
    const Outcome ended = sharer.engine.ChangeModes(changes, each);
    EXPECT_EQ(told, row.told) << s.server.Dialogue();
    EXPECT_TRUE(Told(ended).starts_with(row.ended)) << Told(ended);
    EXPECT_EQ(s.Sent(), row.sent) << s.server.Dialogue();
    EXPECT_EQ(sharer.habits->takesAhead, row.after) << s.server.Dialogue();
    if (ended.kind != Outcome::Kind::Refused) continue;
    EXPECT_EQ(sharer.engine.ChangeModes(changes, each).kind, Outcome::Kind::Refused);
    EXPECT_EQ(s.Sent(), row.sent);
    EXPECT_TRUE(sharer.IsInStep()) << s.server.Dialogue();
  }
  Session s;
  Sharer sharer(s);
  sharer.LogIn();
  const ModeChange broken[] = {{"/a\nDELE b", 0644}};
  (void)sharer.engine.ChangeModes(broken, [](std::size_t, const Outcome& outcome) {
    EXPECT_EQ(outcome.kind, Outcome::Kind::LocalError);
    return true;
  });
  EXPECT_EQ(s.Sent(), "");
}

TEST(Ahead, StopsInTheMiddleOfARemoval) {
  Session s;
  Sharer sharer(s);
  sharer.habits->takesAhead = Learned::Yes;
  std::vector<std::string> paths;
  for (int i = 0; i < 40; ++i) paths.push_back("/" + std::to_string(i));
  for (const std::string& path : paths) s.server.Tree().AddFile(path, "");
  std::atomic<bool> arrived = false;
  s.server.On("DELE", {.arrived = [&] { arrived = true, std::this_thread::sleep_for(900ms); }}, 5);
  sharer.LogIn();
  std::size_t done = 0;
  auto removed = std::async(std::launch::async, [&] {
    return sharer.engine.RemoveFiles(paths, [&](std::size_t, const Outcome& outcome) {
      done += outcome.IsDone() ? 1 : 0;
      return true;
    });
  });
  EXPECT_TRUE(WaitFor([&] { return arrived.load(); }));
  sharer.engine.Interrupt();
  EXPECT_EQ(removed.get().kind, Outcome::Kind::Cancelled);
  EXPECT_EQ(done, 4U);
  sharer.engine.Resume();
  EXPECT_TRUE(sharer.IsInStep()) << s.server.Dialogue();
}

}  // namespace
}  // namespace corvane
