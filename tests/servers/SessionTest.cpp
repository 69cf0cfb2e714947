#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <map>
#include <set>

#include "ftp/MFtp.h"
#include "kit/Background.h"
#include "remote/RemotePath.h"
#include "support/Files.h"
#include "support/RealServers.h"
#include "support/RecordingBrowserUi.h"
#include "support/RecordingTransferUi.h"
#include "support/TemporaryDirectory.h"
#include "support/WaitFor.h"
#include "workers/ControlLooper.h"
#include "workers/FileTransfer.h"
#include "workers/SessionPool.h"

namespace corvane {
namespace {

namespace fs = std::filesystem;

constexpr char kKorean[] = "\xED\x95\x9C\xEA\xB8\x80 \xEC\x97\xAC.txt";

/// How a server is spoken to.
struct Way {
  std::string server;
  std::string tls{};  ///< "explicit", "implicit", or nothing
  std::string version = "1.3";
  bool passive = true;
  bool ipv6 = false;
};

std::ostream& operator<<(std::ostream& out, const Way& way) {
  return out << way.server << (way.tls.empty() ? "" : " " + way.tls + " TLS " + way.version)
             << (way.passive ? " passive" : " active") << (way.ipv6 ? " IPv6" : "");
}

/// What a user does in one session, against a server of the distribution.
class SessionTest : public testing::TestWithParam<Way> {
 protected:
  void SetUp() override {
    const Way& way = GetParam();
    if (way.server == "pure-ftpd" && ::geteuid() != 0)
      GTEST_SKIP() << way.server << " starts for root only";
    Write(pub_ / kKorean, "utf-8\n");
    for (const char* file : {"a b", "empty", "old/deep/f"}) Write(pub_ / file, "");
    Write(remote_.Path() / "tree" / "one" / "deep", "x");
    std::vector<std::string> options;
    if (!way.tls.empty()) options = {"--tls", way.tls, "--max-tls", way.version};
    if (way.ipv6) options.emplace_back("--ipv6");
    server_ = std::make_unique<RealServer>(way.server, remote_.Path(), options);
    where_ = {way.ipv6 ? "::1" : "localhost", server_->port, server_->user, server_->password,
              "pub"};
    where_.passive = way.passive;
    if (way.tls == "explicit") where_.security = Security::Required;
    if (way.tls == "implicit") where_.security = Security::Implicit;
  }

  // What still works when the process ends meets a library that has cleaned up.
  void TearDown() override { EXPECT_TRUE(Background::WaitForNone(std::chrono::seconds(10))); }

  /// Whether the server was asked for its certificate once for each connection, and every data
  /// connection went on with the session of its control connection.
  template <typename Record>
  void ExpectProtected(const Record& seen, std::size_t connections) const {
    const Way& way = GetParam();
    const bool encrypted = !way.tls.empty();
    EXPECT_EQ(seen.questions.size(), encrypted ? connections : 0);
    ASSERT_EQ(seen.protections.size(), connections);
    const Protection& protection = seen.protections.back();
    EXPECT_EQ(protection.encrypted, encrypted);
    EXPECT_EQ(protection.protocol, encrypted ? "TLS " + way.version : "");
    if (encrypted) EXPECT_EQ(protection.certificate.problems, Certificate::kSelfSigned);
    // Pure-FTPd hands no session out that could be resumed.
    const bool cannot = way.server == "pure-ftpd" && way.version == "1.3";
    const bool anew = seen.log.find("has a session of its own") != std::string::npos;
    EXPECT_EQ(anew, encrypted && cannot) << seen.log;
  }

  TemporaryDirectory remote_;
  const fs::path pub_ = remote_.Path() / "pub";
  std::unique_ptr<RealServer> server_;
  Site where_;
};

/// The files below a folder by their path, folders as such.
std::map<std::string, std::string> TreeOf(const fs::path& top) {
  std::map<std::string, std::string> tree;
  for (const auto& entry : fs::recursive_directory_iterator(top))
    tree[entry.path().lexically_relative(top)] =
        entry.is_directory() ? "folder" : "file " + Contents(entry.path());
  return tree;
}

/// When what is below a folder was changed, by its path; folders too where `folders` says so.
std::map<std::string, std::int64_t> TimesOf(const fs::path& top, bool folders) {
  std::map<std::string, std::int64_t> times;
  for (const auto& entry : fs::recursive_directory_iterator(top)) {
    struct stat status {};
    EXPECT_EQ(::stat(entry.path().c_str(), &status), 0);
    if (folders || !entry.is_directory())
      times[entry.path().lexically_relative(top)] = status.st_mtime;
  }
  return times;
}

// On sessions of its own.
void Start(const std::shared_ptr<RecordingTransferUi>& row, const transferStruct& what) {
  const auto pool = std::make_shared<SessionPool>(
      [](const Site& site, std::shared_ptr<OwnerUi> owner, std::shared_ptr<Habits> habits) {
        return std::make_shared<MFtp>(site, std::move(owner), nullptr, std::move(habits));
      });
  const auto board = std::make_shared<JobBoard>(what);
  std::make_shared<FileTransfer>(row, what, board, pool, nullptr)->Run();
}

class TreeTest : public SessionTest {};
class WindowTest : public SessionTest {};

TEST_P(TreeTest, TransfersTreesBothWays) {
  TemporaryDirectory local;
  const fs::path back = local.Path() / "back";
  for (const char* name :
       {"A", "a", "up/sp ace", "up/\xC3\xA4", "up/-n", "up/[x]*", "up/deep/'q\"", kKorean})
    Write(local.Path() / "d" / name, Bytes(name[1] == '\0' ? 0 : 400'000));
  fs::create_directories(local.Path() / "d" / "up" / "void");
  fs::create_directory(back);
  std::int64_t time = 1'000'000'000;
  for (const auto& entry : fs::recursive_directory_iterator(local.Path() / "d")) {
    const timespec times[] = {{0, UTIME_OMIT}, {time += 100'003, 0}};
    ASSERT_EQ(::utimensat(AT_FDCWD, entry.path().c_str(), times, 0), 0);
  }
  const auto expected = TreeOf(local.Path() / "d");
  const bool folders = GetParam().server != "vsftpd";
  const auto expectedTimes = TimesOf(local.Path() / "d", folders);
  for (const std::string step : {"send", "fetch", "resume", "send anew", "send the rest"}) {
    const auto row = std::make_shared<RecordingTransferUi>();
    row->answer = UserQuestion::Answer::Once;
    transferStruct what{.site = where_};
    what.connections = step == "send" || step == "fetch" ? 3 : 1;
    what.download = !step.starts_with("send");
    what.targetFolder = back;
    what.keepTimes = true;
    if (step == "resume") fs::resize_file(back / "d" / "up" / "\xC3\xA4", 300'001);
    if (step == "send anew") Write(pub_ / "d" / "a", "replaced");
    if (step == "send the rest") fs::resize_file(pub_ / "d" / "up" / "\xC3\xA4", 300'001);
    const std::string here = what.download ? back / "d" : local.Path() / "d";
    what.jobs = {{"pub/d", here, RemoteEntry::Kind::Directory, -1,
                  step == "send anew"                           ? Policy::Replace
                  : step == "resume" || step == "send the rest" ? Policy::Resume
                                                                : Policy::CreateNew}};
    Start(row, what);
    ASSERT_TRUE(WaitFor([&] { return row->End().has_value(); }, std::chrono::seconds(30)));
    EXPECT_EQ(row->End(), TransferEnd::Finished) << step << row->Seen().why;
    const fs::path target = what.download ? back / "d" : pub_ / "d";
    EXPECT_TRUE(TreeOf(target) == expected) << step;
    EXPECT_EQ(TimesOf(target, folders), expectedTimes) << step << row->Seen().log;
    // How many there are depends on how fast they are.
    const std::size_t connections = row->Seen().protections.size();
    EXPECT_TRUE(connections >= 1 && connections <= static_cast<std::size_t>(what.connections));
    ExpectProtected(row->Seen(), connections);
  }
}

TEST_P(WindowTest, DoesWhatABrowserWindowAsks) {
  fs::create_directory_symlink("../tree", pub_ / "to tree");
  fs::create_symlink(kKorean, pub_ / "to file");
  const auto ui = std::make_shared<RecordingBrowserUi>();
  ui->answer = UserQuestion::Answer::Once;
  const auto looper =
      std::make_shared<ControlLooper>(where_, std::make_shared<MFtp>(where_, ui), ui);
  ASSERT_TRUE(looper->Run());
  const auto post = [&](std::uint32_t what,
                        const std::vector<std::pair<const char*, std::string>>& fields) {
    Message message(what);
    message.AddString("path", ui->Seen().path);
    for (const auto& [name, text] : fields) message.AddString(name, text);
    EXPECT_TRUE(looper->PostMessage(std::move(message)));
  };
  using Names = std::set<std::string>;
  const auto shows = [&](const Names& names) {
    const bool shown = WaitFor([&] {
      const auto now = ui->Seen().Names();
      return ui->Seen().count.has_value() && Names(now.begin(), now.end()) == names;
    });
    EXPECT_TRUE(shown) << ui->Seen().log;
    return shown;
  };
  post("CNNT"_what, {});
  ASSERT_TRUE(shows({"a b", "empty", kKorean, "old", "to file", "to tree"}));
  post("MKDR"_what, {{"name", "n \xC3\xB6"}});
  post("RNFL"_what, {{"original", "a b"}, {"renameto", "x -> y"}});
  post("CRDR"_what, {});
  ASSERT_TRUE(shows({"x -> y", "empty", kKorean, "old", "to file", "to tree", "n \xC3\xB6"}));
  Message entries("DELE"_what);
  entries.AddString("path", ui->Seen().path);
  for (const char* name : {"empty", "x -> y", "n \xC3\xB6", "old"}) {
    entries.AddString("name", name);
    entries.AddInt32("type", fs::is_directory(pub_ / name) ? 2 : 1);
  }
  EXPECT_TRUE(looper->PostMessage(entries));
  ASSERT_TRUE(shows({kKorean, "to file", "to tree"}));
  EXPECT_FALSE(fs::exists(pub_ / "old"));
  Write(pub_ / "new", "12345");
  Message fresh("STAT"_what);
  fresh.AddString("path", ui->Seen().path);
  for (const char* name : {"new", "to tree"}) fresh.AddString("name", name);
  EXPECT_TRUE(looper->PostMessage(fresh));
  ASSERT_TRUE(shows({kKorean, "to file", "to tree", "new"}));
  EXPECT_EQ(ui->Seen().entries.back().size, 5);
  EXPECT_EQ(ui->Seen().entries.back().mode, "-rw-r--r--");
  if (GetParam().server == "proftpd") {
    post("DUPL"_what, {{"name", "new"}, {"to", "new [2]"}});
    ASSERT_TRUE(shows({kKorean, "to file", "to tree", "new", "new [2]"}));
    EXPECT_EQ(Contents(pub_ / "new [2]"), "12345");
    post("MOVE"_what, {{"name", "new [2]"}, {"to", "../tree/one"}});
  }
  post("MOVE"_what, {{"name", "new"}, {"to", "to tree/one"}});
  ASSERT_TRUE(shows({kKorean, "to file", "to tree"}));
  EXPECT_EQ(Contents(remote_.Path() / "tree" / "one" / "new"), "12345");
  post("VWFL"_what, {{"file", kKorean}});
  EXPECT_TRUE(WaitFor([&] { return ui->Seen().viewerText == "utf-8\n"; }));
  // What is stopped leaves the connection as it was.
  Write(pub_ / "empty too", "x");
  fs::resize_file(pub_ / "empty too", 50'000'000);
  post("VWFL"_what, {{"file", "empty too"}});
  EXPECT_TRUE(WaitFor([&] { return ui->Seen().viewerText.size() > 10; }));
  looper->Stop();
  EXPECT_TRUE(WaitFor([&] { return ui->Seen().viewerNote.has_value(); }));
  post("CRDR"_what, {});
  ASSERT_TRUE(shows({kKorean, "to file", "to tree", "empty too"}));
  post("HSYM"_what, {{"sym", "to file"}});
  post("HSYM"_what, {{"sym", "to tree"}});
  EXPECT_TRUE(shows({"one"}));
  EXPECT_EQ(ui->Seen().Texts("DWLD"_what, "FileName"), std::vector<std::string>{"to file"});
  EXPECT_EQ(ui->Seen().Texts("GERR"_what, "warning"), std::vector<std::string>{});
  // ProFTPD may end an encrypted connection whose transfer was stopped; another one is made then.
  const std::size_t connections = ui->Seen().protections.size();
  EXPECT_LE(connections, GetParam().server == "proftpd" && !GetParam().tls.empty() ? 2 : 1);
  ExpectProtected(ui->Seen(), connections);
  looper->Quit();
}

// Neither a deletion nor a download goes where a link in the tree leads, however the server tells
// of links, and a window shows each as one.
TEST_P(WindowTest, FollowsNoLinks) {
  const fs::path outside = remote_.Path() / "tree";
  Write(pub_ / "t" / "f", "own");
  fs::permissions(pub_ / "t", fs::perms::all);
  fs::create_directory_symlink("../../tree", pub_ / "t" / "out");
  fs::create_symlink("../../tree/one/deep", pub_ / "t" / "file");
  const auto ui = std::make_shared<RecordingBrowserUi>();
  ui->answer = UserQuestion::Answer::Once;
  const auto session = std::make_shared<MFtp>(where_, ui);
  const auto looper = std::make_shared<ControlLooper>(where_, session, ui);
  ASSERT_TRUE(looper->Run());
  const auto post = [&](Message message, std::ptrdiff_t requests) {
    EXPECT_TRUE(looper->PostMessage(std::move(message)));
    const auto done = [](const Message& m) { return m.what == "DONE"_what; };
    ASSERT_TRUE(
        WaitFor([&] { return std::ranges::count_if(ui->Seen().messages, done) == requests; }));
  };
  post(Message("CNNT"_what), 1);
  Message enter("PCHN"_what);
  enter.AddString("path", ui->Seen().path);
  enter.AddString("cwd", "t");
  post(std::move(enter), 2);
  ASSERT_TRUE(WaitFor([&] { return ui->Seen().count == 3U; })) << ui->Seen().log;
  for (const RemoteEntry& entry : ui->Seen().entries)
    EXPECT_EQ(entry.kind, entry.name == "f" ? RemoteEntry::Kind::File : RemoteEntry::Kind::Link);

  TemporaryDirectory local;
  const auto row = std::make_shared<RecordingTransferUi>();
  row->answer = UserQuestion::Answer::Once;
  transferStruct what{.site = where_, .targetFolder = local.Path()};
  what.jobs = {{"pub/t", local.Path() / "t", RemoteEntry::Kind::Directory}};
  Start(row, what);
  ASSERT_TRUE(WaitFor([&] { return row->End().has_value(); }, std::chrono::seconds(30)));
  EXPECT_EQ(TreeOf(local.Path()),
            (std::map<std::string, std::string>{{"t", "folder"}, {"t/f", "file own"}}));

  Message doomed("DELE"_what);
  doomed.AddString("path", SplitPath(ui->Seen().path).first);
  doomed.AddString("name", "t");
  doomed.AddInt32("type", 2);
  post(std::move(doomed), 3);
  EXPECT_TRUE(fs::exists(outside / "one" / "deep") && !fs::exists(pub_ / "t" / "f"))
      << ui->Seen().log;
  EXPECT_TRUE(fs::is_symlink(pub_ / "t" / "out")) << ui->Seen().log;
  looper->Quit();
}

// Small files one after another: what is sent ahead of replies mixes nothing up, whatever the
// server makes of it.
TEST_P(WindowTest, TakesCommandsAhead) {
  const auto ui = std::make_shared<RecordingBrowserUi>();
  ui->answer = UserQuestion::Answer::Once;
  const auto habits = std::make_shared<Habits>();
  MFtp session(where_, ui, {}, habits);
  ASSERT_TRUE(session.Connect().IsDone()) << ui->Seen().log;
  const std::string top = PathBelow(session.Directory(), "pub");
  std::vector<std::string> paths;
  for (std::size_t i = 0; i < 20; ++i) {
    paths.push_back(PathBelow(top, "f" + std::to_string(i)));
    const std::string bytes = Bytes(i * 1'000);
    std::unique_ptr<RemoteFile> file;
    RemoteFile::Settled settled;
    Outcome outcome = session.OpenForWriting(paths[i], 0, file);
    if (outcome.IsDone()) outcome = file->Write(bytes);
    if (outcome.IsDone())
      outcome = file->Finish({.setTime = 1'000'000'000, .askSize = true, .more = true}, settled);
    ASSERT_TRUE(outcome.IsDone()) << outcome.text.English() << ui->Seen().log;
    EXPECT_EQ(settled.size, bytes.size()) << ui->Seen().log;
    EXPECT_EQ(settled.time && settled.time->IsDone(), true) << ui->Seen().log;
    EXPECT_EQ(Contents(pub_ / ("f" + std::to_string(i))), bytes);
  }
  for (const auto& [path, time] : TimesOf(pub_, false))
    if (path.starts_with("f")) EXPECT_EQ(time, 1'000'000'000) << path;
  std::string digest;
  if (GetParam().server == "proftpd") {
    Digest own(session.OffersDigest());
    own.Add(Bytes(19'000));
    EXPECT_TRUE(session.Checksum(paths[19], 10, session.OffersDigest(), digest).IsDone());
    EXPECT_EQ(session.OffersDigest(), DigestKind::Sha512) << ui->Seen().log;
    EXPECT_EQ(digest, own.Take());
  }
  for (std::size_t i = 0; i < paths.size(); ++i) {
    std::unique_ptr<RemoteFile> file;
    RemoteFile::Settled settled;
    std::string came(32'000, 0);
    std::size_t all = 0;
    Outcome outcome = session.OpenForReading(paths[i], 0, file);
    for (std::size_t got = 1; outcome.IsDone() && got > 0; all += got)
      outcome = file->Read(std::span(came).subspan(all), got);
    if (outcome.IsDone()) outcome = file->Finish({.more = true}, settled);
    EXPECT_TRUE(outcome.IsDone()) << outcome.text.English() << ui->Seen().log;
    EXPECT_EQ(came.substr(0, all), Bytes(i * 1'000));
  }
  std::size_t gone = 0;
  paths.insert(paths.begin() + 7, PathBelow(top, "none"));
  EXPECT_TRUE(session
                  .RemoveFiles(paths,
                               [&](std::size_t which, const Outcome& outcome) {
                                 EXPECT_EQ(outcome.IsDone(), which != 7);
                                 return ++gone > 0;
                               })
                  .IsDone());
  EXPECT_EQ(gone, 21U);
  EXPECT_EQ(habits->takesAhead, Habits::Learned::Yes) << ui->Seen().log;
}

// One that is not there, and a directory, among many.
TEST_P(WindowTest, ChangesModes) {
  const auto habits = std::make_shared<Habits>();
  const auto ui = std::make_shared<RecordingBrowserUi>();
  ui->answer = UserQuestion::Answer::Once;
  MFtp session(where_, ui, nullptr, habits);
  ASSERT_TRUE(session.Connect().IsDone()) << ui->Seen().log;
  const std::string top = PathBelow(session.Directory(), "pub");
  const auto at = [&](const char* name) { return PathBelow(top, name); };
  const ModeChange changes[] = {{at("a b"), 0640},   {at(kKorean), 0600}, {at("none"), 0644},
                                {at("empty"), 0444}, {at("old"), 0750},   {at("old/deep"), 0711}};
  std::string told;
  const Outcome ended = session.ChangeModes(changes, [&](std::size_t, const Outcome& outcome) {
    return told += outcome.IsDone() ? 'D' : 'R', true;
  });
  EXPECT_TRUE(ended.IsDone()) << ended.text.English() << ui->Seen().log;
  // It lets nobody who has no name.
  if (GetParam().server == "vsftpd") {
    EXPECT_EQ(told, "RRRRRR") << ui->Seen().log;
    return;
  }
  EXPECT_EQ(told, "DDRDDD") << ui->Seen().log;
  for (const ModeChange& change : changes) {
    if (change.path == at("none")) continue;
    const auto held = fs::status(pub_ / change.path.substr(top.size() + 1)).permissions();
    EXPECT_EQ(static_cast<unsigned>(held), change.mode) << change.path;
  }
  RemoteEntry entry;
  EXPECT_TRUE(session.Stat(at("old"), entry).IsDone());
  EXPECT_EQ(entry.mode, "drwxr-x---") << ui->Seen().log;
}

// Pure-FTPd knows no encryption from the first byte on.
std::vector<Way> AllWays() {
  std::vector<Way> ways;
  for (const std::string& server : RealServer::Names()) {
    for (const int which : {0, 1, 2, 3}) {
      const bool passive = which % 2 == 0;
      const bool ipv6 = which / 2 == 1;
      ways.push_back({.server = server, .passive = passive, .ipv6 = ipv6});
      for (const std::string tls : {"explicit", "implicit"}) {
        if (tls == "implicit" && server == "pure-ftpd") continue;
        for (const char* version : {"1.2", "1.3"})
          ways.push_back({server, tls, version, passive, ipv6});
      }
    }
  }
  return ways;
}

// What a window asks comes over the same connections: one way in plain text, one encrypted.
std::vector<Way> FewWays() {
  std::vector<Way> ways;
  for (const std::string& server : RealServer::Names()) {
    ways.push_back({.server = server, .passive = false});
    ways.push_back({server, "explicit", "1.2"});
    ways.push_back({server, "explicit", "1.3"});
  }
  return ways;
}

INSTANTIATE_TEST_SUITE_P(Servers, TreeTest, testing::ValuesIn(AllWays()));
INSTANTIATE_TEST_SUITE_P(Servers, WindowTest, testing::ValuesIn(FewWays()));

}  // namespace
}  // namespace corvane
