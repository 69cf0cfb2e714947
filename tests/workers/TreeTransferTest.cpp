#include <sys/stat.h>

#include <cstring>

#include "workers/TransferJob.h"

namespace corvane {
namespace {

std::string Line(char type, const std::string& name) {
  return type + ("rwxr-xr-x 1 u g 4 Jan 12 10:00 " + name) + "\r\n";
}

/// What was sent after the login.
std::string Sent(const Job& job) {
  std::string sent;
  const std::vector<std::string> lines = job.server.Transcript();
  for (std::size_t i = 5; i < lines.size(); ++i) sent += lines[i];
  return sent;
}

TEST(TreeTransfer, DownloadsInOrder) {
  Job job;
  job.server.Tree().AddFile("/pub/d/A", "upper");
  job.server.Tree().AddFile("/pub/d/a", "lower");
  job.server.Tree().AddFile("/pub/d/e/b", "below");
  job.server.Tree().AddLink("/pub/d/link", "/pub/f");
  job.server.Tree().AddDirectory("/pub/d/void");
  Write(job.folder.Path() / "d" / "kept", "local");
  job.Fetch("d", RemoteEntry::Kind::Directory);
  job.Fetch("f");
  EXPECT_EQ(job.Run(), TransferEnd::Finished) << job.row->Seen().why;
  const fs::path d = job.folder.Path() / "d";
  EXPECT_EQ(Contents(d / "A") + Contents(d / "a") + Contents(d / "e" / "b"), "upperlowerbelow");
  EXPECT_EQ(Contents(d / "kept"), "local");
  EXPECT_TRUE(fs::is_directory(d / "void") && !fs::exists(d / "link"));
  EXPECT_EQ(job.row->Progress().files, 4);
  EXPECT_EQ(job.Notes(), "Left out: d/link (a link or a special file)\n");
  EXPECT_EQ(Sent(job),
            "TYPE I\r\nCWD pub\r\nPASV\r\nRETR f\r\nPASV\r\nCWD d\r\nPWD\r\nLIST -la\r\nPASV\r\n"
            "RETR A\r\nPASV\r\nRETR a\r\nPASV\r\nCWD e\r\nPWD\r\nLIST -la\r\nPASV\r\nRETR b\r\n"
            "PASV\r\nCWD /pub/d/void\r\nPWD\r\nLIST -la\r\n");
}

// Where a server does not set times that is said once, and no transfer fails of it.
TEST(TreeTransfer, KeepsTimesWhereTheServerLetsIt) {
  Job job;
  job.description.keepTimes = true;
  job.server.On("FEAT", {.reply = "211-Has\r\n MFMT\r\n211 End\r\n"});
  job.server.On("MFMT", {.reply = "213 Set\r\n"}, 1);
  job.server.On("MFMT", {.reply = "550 Not yours\r\n"});
  for (const char* file : {"up/a", "up/b", "up/c", "up/e/d"}) Write(job.folder.Path() / file, "1");
  job.Send("up");
  EXPECT_EQ(job.Run(), TransferEnd::Finished) << job.row->Seen().why;
  const std::string log = job.row->Seen().log;
  const auto count = [&](std::string_view text) {
    int times = 0;
    for (std::size_t at = 0; (at = log.find(text, at)) != std::string::npos; ++at) ++times;
    return times;
  };
  EXPECT_EQ(count("MFMT 20"), 3) << log;
  EXPECT_EQ(count("Files on the server do not keep their times: Not yours"), 1) << log;
  EXPECT_EQ(count("Folders on the server do not keep their times: Not yours"), 1) << log;
}

// Raw bytes there, UTF-8 here; of two names that come to the same neither replaces the other.
TEST(TreeTransfer, NamesFilesInTheSitesEncoding) {
  const std::string raw = "\xCF\xF0";
  Job down;
  down.description.site.encoding = "WINDOWS-1251";
  down.policy = Policy::Replace;
  down.server.Tree().AddFile("/pub/d/" + raw + "/" + raw, "raw");
  down.server.Tree().AddFile("/pub/d/" + raw + "/Пр", "utf-8");
  down.Fetch("d", RemoteEntry::Kind::Directory);
  EXPECT_EQ(down.Run(), TransferEnd::Finished) << down.row->Seen().why;
  const fs::path d = down.folder.Path() / "d" / "Пр";
  EXPECT_EQ(Contents(d / raw) + Contents(d / "Пр"), "rawutf-8");
  Job up;
  up.description.site.encoding = "WINDOWS-1251";
  for (const char* name : {"up/Пр", "up/ä", "up/z"}) Write(up.folder.Path() / name, name);
  up.Send("up");
  EXPECT_EQ(up.Run(), TransferEnd::Failed);
  EXPECT_EQ(up.server.Tree().File("/pub/up/" + raw), "up/Пр");
  EXPECT_EQ(up.server.Tree().File("/pub/up/z"), "up/z");
  EXPECT_NE(up.Notes().find("up/ä: The name has letters that WINDOWS-1251 does not have."),
            std::string::npos)
      << up.Notes();
}

// Whatever a server lists, nothing outside the folder is touched and the rest comes.
TEST(TreeTransfer, RefusesWhatLeadsElsewhere) {
  const std::tuple<char, std::string, std::string> cases[] = {
      {'-', "../x", "cannot be used for a local file"},
      {'-', "a/b", "cannot be used for a local file"},
      {'d', "../up", "cannot be a local folder's"},
      {'d', "self", "lists a directory inside itself: /pub/d"},
      {'d', "parent", "lists a directory inside itself: /pub"},
      {'d', "other", ""},  // a link to another directory, which ".." does not lead out of
      {'d', "none", "Cannot do that."},
      {'d', "way", "Could not make the folder"},
      {'d', "linked", "Could not make the folder"},
      {'-', "linked", "exists already"},
  };
  for (const bool shared : {false, true}) {
    for (const auto& [type, name, why] : cases) {
      if (shared && name != "other" && name != "self") continue;
      Job job(true, shared);
      VirtualTree& tree = job.server.Tree();
      for (const char* path : {"/pub/d/ok", "/pub/d/linked/x", "/else/where/x"})
        tree.AddFile(path, "good");
      tree.AddDirectory("/pub/d/way");
      tree.AddLink("/pub/d/self", "/pub/d");
      tree.AddLink("/pub/d/parent", "/pub");
      tree.AddLink("/pub/d/other", "/else/where");
      TemporaryDirectory outside;
      Write(outside.Path() / "x", "theirs");
      Write(job.folder.Path() / "d" / "way", "in the way");
      fs::create_symlink(outside.Path(), job.folder.Path() / "d" / "linked");
      job.server.On("LIST", {.data = Line(type, name) + Line('-', "ok")}, 1);
      job.Fetch("d", RemoteEntry::Kind::Directory);
      EXPECT_EQ(job.Run() == TransferEnd::Finished, why.empty()) << name << job.row->Seen().why;
      EXPECT_NE(job.Notes().find(why), std::string::npos) << name << "\n" << job.Notes();
      EXPECT_EQ(Contents(job.folder.Path() / "d" / "ok"), "good") << name << job.server.Dialogue();
      EXPECT_EQ(Contents(outside.Path() / "x"), "theirs");
      const auto top = fs::directory_iterator(job.folder.Path());
      EXPECT_EQ(std::distance(top, fs::directory_iterator()), 1) << name;
    }
  }
}

// However deep it is: every directory holds another one.
TEST(TreeTransfer, EndsInATreeWithoutEnd) {
  Job job;
  job.server.On("CWD", {.reply = "250 ok\r\n"});
  job.server.On("PWD", {.reply = "502 No\r\n"});
  job.server.On("LIST", {.data = Line('d', "d")});
  job.Fetch("d", RemoteEntry::Kind::Directory);
  EXPECT_EQ(job.Run(), TransferEnd::Failed);
  EXPECT_NE(job.row->Seen().why.find("nested too deeply"), std::string::npos);
  const fs::recursive_directory_iterator all(job.folder.Path());
  EXPECT_EQ(std::distance(all, fs::recursive_directory_iterator()), 128);
}

// A folder that holds too much is left out whole, and leaves its share to others.
TEST(TreeTransfer, LeavesOutWhatIsTooMuch) {
  Job job;
  job.bounds.entries = 4;
  for (const char* path : {"large/1", "large/2", "large/3", "small/1", "small/2"})
    job.server.Tree().AddFile(std::string("/pub/d/") + path, "good");
  job.Fetch("d", RemoteEntry::Kind::Directory);
  EXPECT_EQ(job.Run(), TransferEnd::Failed);
  EXPECT_EQ(job.Notes(), "d/large: Left out, for the transfer has more than 4 entries.\n");
  EXPECT_EQ(Contents(job.folder.Path() / "d/small/2"), "good");
  EXPECT_TRUE(fs::is_empty(job.folder.Path() / "d/large"));
}

TEST(TreeTransfer, GoesOnAfterARefusal) {
  const std::tuple<const char*, const char*, const char*> cases[] = {
      {"LIST", "553 No\r\n", "d: No\n"},
      {"RETR", "550 Secret\r\n", "d/a: Secret\n"},
      {"CWD", "550 Shut\r\n", "d: Shut\n"}};
  for (const auto& [verb, reply, note] : cases) {
    Job job;
    for (const char* path : {"/pub/d/a", "/pub/d/b"}) job.server.Tree().AddFile(path, "x");
    job.server.On(verb, {.reply = reply}, *verb == 'L' ? 0 : 2);
    job.Fetch("d", RemoteEntry::Kind::Directory);
    job.Fetch("f");
    EXPECT_EQ(job.Run(), TransferEnd::Failed);
    EXPECT_EQ(job.Notes(), note);
    EXPECT_EQ(Contents(job.folder.Path() / "f"), "0123456789") << verb << job.server.Dialogue();
    EXPECT_EQ(fs::exists(job.folder.Path() / "d" / "b"), *verb == 'R');
    EXPECT_NE(job.row->Seen().why.find(" files failed: d"), std::string::npos);
  }
}

TEST(TreeTransfer, UploadsAFolder) {
  Job job;
  const fs::path d = job.folder.Path() / "d";
  Write(d / "a", "one");
  Write(d / "e" / "b", "two");
  fs::create_directory(d / "void");
  fs::create_symlink("a", d / "link");
  fs::create_directory_symlink("e", d / "way");
  fs::create_symlink("nowhere", d / "dangling");
  ASSERT_EQ(::mkfifo((d / "fifo").c_str(), 0600), 0);
  job.server.Tree().AddFile("/pub/d/there", "kept");
  job.Send("d/");
  EXPECT_EQ(job.Run(), TransferEnd::Finished) << job.row->Seen().why;
  const VirtualTree& tree = job.server.Tree();
  EXPECT_EQ(tree.File("/pub/d/a").value_or("") + tree.File("/pub/d/e/b").value_or("") +
                tree.File("/pub/d/link").value_or("") + tree.File("/pub/d/there").value_or(""),
            "onetwoonekept");
  EXPECT_TRUE(tree.Exists("/pub/d/void") && !tree.Exists("/pub/d/way"));
  EXPECT_EQ(job.Notes(),
            "Left out: d/dangling (a link to no file)\nLeft out: d/fifo (a special file)\n"
            "Left out: d/way (a link to a folder)\n");
  const auto messages = job.row->Seen().messages;
  ASSERT_EQ(messages.size(), 1U);
  EXPECT_EQ(messages[0].FindString("Type"), "d");
  EXPECT_FALSE(messages[0].FindInt64("fSize").has_value());
}

// What is refused or gone is named, and everything else arrives.
TEST(TreeTransfer, AnUploadGoesOnWithTheRest) {
  const std::tuple<const char*, int, ScriptedAction, std::string, const char*> cases[] = {
      {"STOR", 2, {.reply = "553 Full\r\n"}, "d/a: Full\n", "bcg"},
      {"STOR", 2, {.completion = "552 Full\r\n"}, "d/a: Full\n", "abcg"},
      {"MKD", 1, {.reply = "550 Not yours\r\n"}, "d: Not yours\n", "g"},
      {"STOR", 2, {}, "d/b: Could not read ", "acg"},  // it vanishes meanwhile
  };
  for (const auto& [verb, number, action, note, arrived] : cases) {
    Job job;
    for (const char* name : {"d/a", "d/b", "d/c", "g"}) Write(job.folder.Path() / name, "x");
    for (const char* name : {"d", "g"}) job.Send(name);
    ScriptedAction act = action;
    if (note.starts_with("d/b")) act.arrived = [&] { fs::remove(job.folder.Path() / "d" / "b"); };
    job.server.On(verb, act, number);
    EXPECT_EQ(job.Run(), TransferEnd::Failed);
    EXPECT_TRUE(job.Notes().starts_with(note)) << job.Notes();
    for (const char* name : {"d/a", "d/b", "d/c", "g"}) {
      const bool there =
          std::string_view(arrived).find(name[std::strlen(name) - 1]) != std::string_view::npos;
      EXPECT_EQ(job.server.Tree().File(PathBelow("/pub", name)) == "x", there)
          << name << job.server.Dialogue();
    }
  }
}

}  // namespace
}  // namespace corvane
