#include <map>

#include "queue/QueueStore.h"
#include "util/LocalFile.h"
#include "util/SqliteFile.h"
#include "workers/TransferJob.h"

// Where the bytes of a file go, and which bytes that stand there already are believed.

namespace corvane {
namespace {

constexpr std::int64_t kSize = 200'000;
constexpr std::int64_t kHalf = 100'000;
constexpr char kPart[] = "/pub/.f.corvane-part";

bool Sent(const Job& job, const std::string& line) {
  return std::ranges::count(job.server.Transcript(), line + "\r\n") > 0;
}

// What stands on the server is given up only where the server takes no file of another name. How
// the first file ends, and whether the second one still goes under another name.
TEST(Places, AnUploadGivesTheHiddenNameUpOnlyForTheName) {
  using Script = std::multimap<std::string, std::pair<int, std::string>>;
  struct Case {
    const char* name;
    Script script;  // verb, its number, reply
    bool replaced;
    bool learned;
  };
  const Case cases[] = {
      {"taken", {}, true, false},
      {"name refused", {{"STOR", {1, "553 Not that name"}}}, true, true},
      {"name refused, in other words", {{"STOR", {1, "550 Forbidden name"}}}, true, true},
      {"disk full", {{"STOR", {1, "552 Full"}}}, false, false},
      {"disk full for now", {{"STOR", {1, "452 Full"}}}, false, false},
      {"no account", {{"STOR", {1, "532 Who pays?"}}}, false, false},
      {"no rights at all", {{"STOR", {1, "550 No"}}, {"STOR", {2, "550 No"}}}, false, false},
      {"does not rename", {{"RNFR", {1, "502 No"}}}, true, true},
      {"does not replace", {{"RNTO", {1, "550 There"}}}, true, true},
      {"not to be replaced", {{"RNTO", {1, "550 No"}}, {"DELE", {1, "550 No"}}}, false, false},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    Job job;
    job.policy = Policy::Replace;
    for (const auto& [verb, what] : c.script)
      job.server.On(verb, {.reply = what.second + "\r\n"}, what.first);
    for (const char* name : {"f", "g"}) {
      Write(job.folder.Path() / name, "ours");
      job.server.Tree().AddFile(std::string("/pub/") + name, "theirs");
      job.Send(name);
    }
    EXPECT_EQ(job.Run(), c.replaced ? TransferEnd::Finished : TransferEnd::Failed);
    EXPECT_EQ(job.server.Tree().File("/pub/f"), c.replaced ? "ours" : "theirs");
    EXPECT_EQ(job.server.Tree().File("/pub/g"), "ours");
    EXPECT_EQ(Sent(job, "STOR .g.corvane-part"), !c.learned) << job.server.Dialogue();
    EXPECT_FALSE(job.server.Tree().Exists(kPart));
  }
}

enum class Stands { Nothing, Ours, Theirs };

std::string Bytes(Stands what) {
  if (what == Stands::Nothing) return "";
  std::string bytes = corvane::Bytes(kHalf);
  if (what == Stands::Theirs) bytes[10] = bytes.back() = 'x';
  return bytes;
}

// One file of which something stands there: how an earlier try has left the job, and what then
// goes. `begin` is where the bytes begin; -1 where the file is refused, -2 where it is left alone.
struct Standing {
  const char* name;
  Policy policy;
  bool begun;  // the job says so
  bool kept;   // it comes from the queue of an earlier program
  Stands own;
  Stands part;
  const char* verb;  // of which this is the reply
  const char* reply;
  bool changed;  // the source, since then
  std::int64_t begin;
  bool aside;  // what stands under the own name is not touched before the end
};

void Prepare(Job& job, const Standing& c, std::optional<std::int64_t> modified) {
  TransferJob& one = job.description.jobs.at(0);
  one.begun = c.begun;
  one.modified = modified;
  if (c.kept) {
    job.board = std::make_shared<JobBoard>(
        job.description, std::vector<JobRecord>{{.id = 0, .job = one}}, 1, nullptr);
  }
  if (*c.verb != '\0') job.server.On(c.verb, {.reply = c.reply});
}

TEST(Places, AnUploadGoesOnWithItsOwnBeginningOnly) {
  using enum Policy;
  using enum Stands;
  const char* const closed = "550 Not to be read\r\n";
  const Standing cases[] = {
      {"begun", CreateNew, true, false, Ours, Nothing, "", "", false, kHalf, false},
      {"begun, unreadable", CreateNew, true, false, Ours, Nothing, "RETR", closed, false, kHalf,
       false},
      {"begun and changed", CreateNew, true, true, Ours, Nothing, "RETR", closed, true, 0, false},
      {"perhaps begun", CreateNew, false, true, Ours, Nothing, "", "", false, kHalf, false},
      {"not begun", CreateNew, false, true, Theirs, Nothing, "", "", false, -1, true},
      {"not begun, unreadable", CreateNew, false, true, Ours, Nothing, "RETR", closed, false, -1,
       true},
      {"not begun, left alone", Skip, false, true, Theirs, Nothing, "", "", false, -2, true},
      {"to be replaced", Replace, true, false, Theirs, Ours, "RETR", closed, false, kHalf, true},
      {"to be replaced, perhaps begun", Replace, false, true, Theirs, Ours, "RETR", closed, false,
       0, true},
      {"to be replaced, changed", Replace, true, false, Theirs, Ours, "RETR", closed, true, 0,
       true},
      {"resumed", Resume, false, false, Ours, Nothing, "", "", false, kHalf, false},
      {"resumed, another file", Resume, false, false, Theirs, Nothing, "", "", false, 0, true},
      {"resumed, unreadable", Resume, false, false, Ours, Nothing, "RETR", closed, false, 0, true},
      {"resumed again beside it", Resume, true, false, Theirs, Ours, "", "", false, kHalf, true},
      {"resumed again, unreadable", Resume, true, false, Theirs, Ours, "RETR", closed, false, 0,
       true},
      {"resumed again, changed", Resume, true, false, Theirs, Ours, "", "", true, 0, true},
  };
  for (const Standing& c : cases) {
    SCOPED_TRACE(c.name);
    Job job;
    job.policy = c.policy;
    const fs::path path = job.folder.Path() / "f";
    Write(path, corvane::Bytes(kSize));
    VirtualTree& tree = job.server.Tree();
    tree.Remove("/pub/f", false);
    if (c.own != Nothing) tree.AddFile("/pub/f", Bytes(c.own));
    if (c.part != Nothing) tree.AddFile(kPart, Bytes(c.part));
    job.Send("f");
    LocalFile source;
    ASSERT_EQ(source.OpenForReading(path), 0);
    Prepare(job, c, source.InitialTime() - (c.changed ? 1 : 0));
    EXPECT_EQ(job.Run() == TransferEnd::Failed, c.begin == -1) << job.server.Dialogue();
    const std::string stands = c.begin < 0 ? Bytes(c.own) : corvane::Bytes(kSize);
    EXPECT_TRUE(tree.File("/pub/f") == stands) << job.server.Dialogue();
    EXPECT_EQ(job.row->Progress().moved, c.begin < 0 ? 0 : kSize - c.begin);
    EXPECT_EQ(!Sent(job, "STOR f") && !Sent(job, "APPE f"), c.aside) << job.server.Dialogue();
    EXPECT_TRUE(c.begin < 0 || !tree.Exists(kPart));
  }
}

TEST(Places, ADownloadGoesOnWithItsOwnBeginningOnly) {
  using enum Policy;
  using enum Stands;
  const char* const same = "213 20250102030405\r\n";
  const char* const later = "213 20250102030406\r\n";
  constexpr std::int64_t kThen = 1'735'787'045;
  const Standing cases[] = {
      {"begun", CreateNew, true, false, Ours, Nothing, "MDTM", same, false, kHalf, false},
      {"begun, changed", CreateNew, true, false, Ours, Nothing, "MDTM", later, true, 0, true},
      {"begun, time unknown", CreateNew, true, false, Ours, Nothing, "", "", false, kHalf, false},
      {"begun, but gone", CreateNew, true, false, Nothing, Nothing, "", "", false, 0, false},
      {"perhaps begun", CreateNew, false, true, Ours, Nothing, "", "", false, kHalf, false},
      {"not begun", CreateNew, false, true, Theirs, Nothing, "", "", false, -1, true},
      {"not begun, left alone", Skip, false, true, Theirs, Nothing, "", "", false, -2, true},
      {"to be replaced", Replace, true, false, Theirs, Ours, "", "", false, kHalf, true},
      {"to be replaced, other part", Replace, true, false, Theirs, Theirs, "", "", false, 0, true},
      {"to be replaced, changed", Replace, true, false, Theirs, Ours, "MDTM", later, true, 0, true},
      {"resumed, changed", Resume, false, false, Ours, Nothing, "MDTM", later, true, 0, true},
  };
  for (const Standing& c : cases) {
    SCOPED_TRACE(c.name);
    Job job;
    job.policy = c.policy;
    job.server.Tree().AddFile("/pub/f", corvane::Bytes(kSize));
    job.server.On("FEAT", {.reply = "211-Has\r\n MDTM\r\n211 End\r\n"});
    const fs::path path = job.folder.Path() / "f";
    if (c.own != Nothing) Write(path, Bytes(c.own));
    if (c.part != Nothing) Write(job.folder.Path() / ".f.corvane-part", Bytes(c.part));
    job.Fetch("f", RemoteEntry::Kind::File, kSize);
    Prepare(job, c, kThen);
    std::string meanwhile;  // before the end of the data
    job.server.On("RETR", {.arrived = [&] { meanwhile = Contents(path); }}, 1);
    EXPECT_EQ(job.Run() == TransferEnd::Failed, c.begin == -1) << job.server.Dialogue();
    EXPECT_TRUE(Contents(path) == (c.begin < 0 ? Bytes(c.own) : corvane::Bytes(kSize)));
    EXPECT_TRUE(meanwhile == Bytes(c.own));
    EXPECT_EQ(job.row->Progress().moved, c.begin < 0 ? 0 : kSize - c.begin);
    const auto entries = fs::directory_iterator(job.folder.Path());
    EXPECT_EQ(std::distance(entries, fs::directory_iterator()), 1);
  }
}

// Of two rows that write one file the second fails and says why.
TEST(Places, OneTargetIsWrittenByOneTransfer) {
  for (const bool download : {true, false}) {
    Job job;
    job.policy = Policy::Replace;
    if (!download) Write(job.folder.Path() / "f", "ours");
    download ? job.Fetch("f") : job.Send("f");
    const auto other = std::make_shared<RecordingTransferUi>();
    const auto second = [&] {
      auto board = std::make_shared<JobBoard>(job.description);
      std::make_shared<FileTransfer>(other, job.description, board, job.pool, nullptr)->Run();
      EXPECT_TRUE(WaitFor([&] { return other->End().has_value(); }));
    };
    job.server.On(download ? "RETR" : "STOR", {.arrived = second}, 1);
    EXPECT_EQ(job.Run(), TransferEnd::Finished) << job.row->Seen().why;
    EXPECT_EQ(other->End(), TransferEnd::Failed);
    EXPECT_EQ(other->Seen().why, "Another transfer is writing f already.");
    EXPECT_EQ(download ? Contents(job.folder.Path() / "f") : job.server.Tree().File("/pub/f"),
              download ? "0123456789" : "ours");
  }
}

// The queue's file as a killed program leaves it: copied while `row` runs.
struct Killed {
  explicit Killed(Job& job) : path(job.queue.Path() / "killed") {
    const std::string own = job.queue.Path() / "queue";
    store = std::make_shared<QueueStore>(own);
    store->RowAdded(1, job.description);
    job.board = std::make_shared<JobBoard>(job.description, 1, store);
    job.server.On("RETR",
                  {.arrived =
                       [own, this] {
                         for (const char* part : {"", "-wal"})
                           Write(path + part, Contents(own + part));
                       }},
                  1);
  }
  // The job as the next program has it.
  void GoOn(Job& job) {
    store = std::make_shared<QueueStore>(path);
    const auto rows = store->Load();
    ASSERT_EQ(rows.size(), 1U) << store->Trouble().English();
    job.row = std::make_shared<RecordingTransferUi>();
    job.board = std::make_shared<JobBoard>(rows[0].what, rows[0].jobs, 1, store);
  }
  const std::string path;
  std::shared_ptr<QueueStore> store;
};

// What a folder holds is settled once, whatever happens to the program meanwhile.
TEST(Places, ACrashDoublesNothing) {
  const std::tuple<Policy, std::string> cases[] = {
      {Policy::KeepBoth, "a=here a (2)=1 b=2 "},
      {Policy::Skip, "a=here b=2 "},
      {Policy::CreateNew, "a=here b=2 "},
      {Policy::Replace, "a=1 b=2 "},
  };
  for (const auto& [policy, whole] : cases) {
    Job job;
    job.policy = policy;
    job.server.Tree().AddFile("/pub/d/a", "1");
    job.server.Tree().AddFile("/pub/d/b", "2");
    Write(job.folder.Path() / "d" / "a", "here");
    job.Fetch("d", RemoteEntry::Kind::Directory);
    Killed killed(job);
    job.Start();
    job.Wait();
    killed.GoOn(job);
    job.Start();
    job.Wait();
    std::map<std::string, std::string> found;
    for (const auto& entry : fs::directory_iterator(job.folder.Path() / "d"))
      found[entry.path().filename()] = Contents(entry.path());
    std::string all;
    for (const auto& [name, bytes] : found) all += name + "=" + bytes + " ";
    EXPECT_EQ(all, whole) << job.row->Seen().why << job.Notes();
  }
}

// What had moved and was not synced is believed as long as the system runs on.
TEST(Places, APowerCutHasFilesComparedAgain) {
  for (const bool cut : {false, true}) {
    Job job;
    const std::string whole = corvane::Bytes(kSize);
    const std::string queue = job.queue.Path() / "queue";
    for (const char* name : {"lost", "there"}) {
      job.server.Tree().AddFile(std::string("/pub/") + name, whole);
      job.Fetch(name, RemoteEntry::Kind::File, kSize);
    }
    {
      QueueStore store(queue);
      EXPECT_TRUE(store.Load().empty());
      store.RowAdded(1, job.description);
      for (const JobId id : {0U, 1U}) store.JobChanged(1, id, JobState::Moved);
    }
    if (cut) {
      SqliteFile file(queue, {.version = 1, .alone = true});
      ASSERT_EQ(file.Open(false), SqliteFile::Opened::Yes);
      ASSERT_EQ(file.Run("UPDATE about SET value = 'another' WHERE name = 'boot'"), 0);
    }
    const std::string rest = whole.substr(0, kHalf);
    Write(job.folder.Path() / "lost", rest);
    Write(job.folder.Path() / "there", whole);
    const auto store = std::make_shared<QueueStore>(queue);
    const auto rows = store->Load();
    ASSERT_EQ(rows.size(), 1U);
    job.board = std::make_shared<JobBoard>(rows[0].what, rows[0].jobs, 1, store);
    EXPECT_EQ(job.board->Counted().done, cut ? 0 : 2);
    job.Start();
    EXPECT_EQ(job.Wait(), TransferEnd::Finished) << job.row->Seen().why;
    EXPECT_TRUE(Contents(job.folder.Path() / "lost") == (cut ? whole : rest));
    EXPECT_TRUE(Contents(job.folder.Path() / "there") == whole);
    EXPECT_EQ(job.row->Progress().moved, cut ? kHalf : 0);
    EXPECT_EQ(job.board->Counted().done, 2);
  }
}

}  // namespace
}  // namespace corvane
