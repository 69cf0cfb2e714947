#include "queue/QueueStore.h"

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <ctime>
#include <map>
#include <random>
#include <thread>

#include "kit/Background.h"
#include "queue/BigTree.h"
#include "support/Files.h"
#include "support/TemporaryDirectory.h"
#include "support/WaitFor.h"
#include "util/SqliteFile.h"

namespace corvane {
namespace {

using namespace std::chrono_literals;

class Store : public testing::Test {
 protected:
  using Rows = std::vector<QueueStore::Row>;

  static transferStruct Upload() {
    transferStruct what;
    what.site = {.host = "h\xFF",
                 .port = 990,
                 .user = "u",
                 .password = "SECRET-1",
                 .path = "/p",
                 .passive = true,
                 .proxy = Proxy{.host = "p", .password = "SECRET-2"},
                 .security = Security::Implicit,
                 .encoding = "CP1252",
                 .clientCertificate = "/c.pem",
                 .asksPassword = true,
                 .keptPassword = true,
                 .warnsOfPlain = true,
                 .keepAlive = 30,
                 .connections = 3};
    what.download = false;
    what.remoteDirectory = "/to";
    what.targetFolder = "/from";
    what.size = 1LL << 40;
    what.bufferSize = 65536;
    what.keepTimes = true;
    what.checks = what.usesPartNames = false;
    what.connections = 7;
    what.expected = FileVersion{
        .size = 5, .modified = -7, .kind = DigestKind::Sha1, .digest = std::string("\0\xFF", 2)};
    what.tracked = true;
    what.jobs = {{.remote = "/to/a\nb", .local = "/from/a", .size = 5, .policy = Policy::KeepBoth},
                 {.remote = "/to/c",
                  .local = "/to/c",
                  .policy = Policy::Newer,
                  .modified = -1,
                  .begun = true,
                  .there = true}};
    return what;
  }
  // What of it is kept.
  static transferStruct Kept(transferStruct what) {
    what.site.password.clear();
    what.site.proxy.reset();
    what.jobs.clear();
    return what;
  }
  Rows Load() const { return QueueStore(path_).Load(); }
  std::string States() const {
    std::string states;
    for (const QueueStore::Row& row : Load()) {
      states += std::to_string(row.id) + "WRPAFCD"[static_cast<int>(row.state)] + " ";
      for (const JobRecord& job : row.jobs) states += "wbomdf"[static_cast<int>(job.state)];
      states += "; ";
    }
    return states;
  }
  int Sql(const char* sql) const {
    SqliteFile file(path_, {.version = 1, .alone = true});
    if (file.Open(false) != SqliteFile::Opened::Yes) return -1;
    return file.Run(sql);
  }

  const TemporaryDirectory folder_;
  const std::string path_ = folder_.Path() / "queue.sqlite";
};

TEST_F(Store, KeepsRowsAndJobsButNoPasswords) {
  transferStruct tree = BigTree::Wanted();
  {
    QueueStore store(path_);
    EXPECT_TRUE(store.Load().empty());
    EXPECT_EQ(store.NextId(), 1);
    for (const RowId row : {1, 2, 3, 4, 5}) store.RowAdded(row, row == 2 ? tree : Upload());
    store.RowChanged(1, RowState::Running);
    store.RowChanged(3, RowState::Failed);
    store.RowChanged(5, RowState::Cancelled);
    store.RowsOrdered({3, 2, 1, 5});
    store.RowRemoved(4);
    store.DirectoryOpened(4, 0, "/", {{.id = 2, .parent = 0}});
    store.DirectoryOpened(2, 0, "/d0", {{1, 0, {.remote = "x", .local = "y"}}});
    store.JobChanged(2, 1, JobState::Begun);
    store.JobChanged(1, 0, JobState::Moved);
    store.JobChanged(1, 1, JobState::Moved);
    store.Flush();
    store.JobChanged(1, 1, JobState::Begun);
    store.RowSynced(1);
    EXPECT_EQ(store.NextId(), 6);
    struct stat status {};
    ASSERT_EQ(::stat(path_.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0600U);
    EXPECT_EQ((Contents(path_) + Contents(path_ + "-wal")).find("SECRET"), std::string::npos);
  }
  EXPECT_EQ(Contents(path_).find("SECRET"), std::string::npos);
  EXPECT_EQ(States(), "3F ww; 2P ob; 1P db; ");
  const Rows rows = Load();
  EXPECT_EQ(rows[0].what, Kept(Upload()));
  EXPECT_EQ(rows[1].what, Kept(tree));
  EXPECT_EQ(rows[0].jobs[0], (JobRecord{0, kNoJob, Upload().jobs[0]}));
  EXPECT_EQ(rows[0].jobs[1], (JobRecord{1, kNoJob, Upload().jobs[1]}));
  EXPECT_EQ(rows[1].jobs[0], (JobRecord{0, kNoJob, tree.jobs[0], JobState::Open, "/d0"}));
}

TEST_F(Store, MendsWhatASuddenEndMayLeave) {
  {
    QueueStore store(path_);
    EXPECT_TRUE(store.Load().empty());
    store.RowAdded(7, BigTree::Wanted());
    // Others looked through a directory at the same time, and their numbers were not written.
    store.DirectoryOpened(7, 0, "/d0",
                          {{3, 0, {.remote = "d", .kind = RemoteEntry::Kind::Directory}},
                           {5, 0, {.remote = "f"}},
                           {6, 0, {.remote = "g"}}});
    store.DirectoryOpened(7, 3, "/d0/d", {{9, 3, {.remote = "h"}}});
    for (const JobId job : {0U, 3U, 5U}) store.JobChanged(7, job, JobState::Done);
    store.JobChanged(7, 6, JobState::Moved);
    store.JobChanged(7, 9, JobState::Begun);
  }
  EXPECT_EQ(States(), "7P ooddb; ") << "a directory ends after what it holds; moved in this boot";
  EXPECT_EQ(Load()[0].jobs[4].parent, 1U);
  EXPECT_EQ(Sql("UPDATE about SET value = 'another'; UPDATE jobs SET state = 3 WHERE id = 3"), 0);
  EXPECT_EQ(States(), "7P oodbb; ") << "not known to be on the disk";
}

TEST_F(Store, PutsAsideWhatMakesNoSense) {
  const auto make = [&] {
    QueueStore store(path_);
    store.RowAdded(1, BigTree::Wanted());
    store.RowAdded(2, Upload());
    store.DirectoryOpened(1, 0, "/d0", {{1, 0, {.remote = "f"}}});
  };
  make();
  const std::string whole = Contents(path_);
  std::string newer = whole;
  newer[63] = 2;
  std::string broken = whole;
  broken.replace(broken.size() - 4096, 100, 100, '\xAA');
  const std::vector<std::string> files{"no database at all, but long enough", newer, broken,
                                       whole.substr(0, whole.size() - 5000)};
  const std::array<const char*, 16> nonsense{
      "UPDATE rows SET state = 7",
      "UPDATE rows SET port = 70000",
      "UPDATE rows SET security = -1",
      "UPDATE rows SET bufferSize = 0",
      "UPDATE rows SET passive = 2",
      "UPDATE rows SET id = -5 WHERE id = 1",
      "UPDATE jobs SET state = 6",
      "UPDATE jobs SET kind = 0",
      "UPDATE jobs SET policy = 6",
      "UPDATE jobs SET size = -2",
      "UPDATE jobs SET parent = 1 WHERE id = 1",
      "UPDATE jobs SET parent = 4 WHERE id = 1",
      "UPDATE jobs SET place = NULL",
      "UPDATE jobs SET row = 3 WHERE row = 1",
      "UPDATE jobs SET id = 4294967295 WHERE row = 2 AND id = 1",
      "DROP TABLE jobs",
  };
  for (std::size_t i = 0; i < files.size() + nonsense.size(); ++i) {
    const char* const sql = i < files.size() ? "a file" : nonsense.at(i - files.size());
    SCOPED_TRACE(sql + std::string(" ") + std::to_string(i));
    for (const auto& file : std::filesystem::directory_iterator(folder_.Path())) {
      std::filesystem::remove(file);
    }
    if (i < files.size()) {
      Write(path_, files.at(i));
    } else {
      Write(path_, whole);
      ASSERT_EQ(Sql(sql), 0);
    }
    for (const std::string aside : {".damaged", ".damaged.2"}) {
      if (i > 0 && aside != ".damaged") continue;
      const std::string bytes = Contents(path_);
      {
        QueueStore store(path_);
        EXPECT_TRUE(store.Load().empty());
        EXPECT_FALSE(store.Trouble().IsEmpty());
        EXPECT_EQ(Contents(path_ + aside).size(), bytes.size());
        store.RowAdded(store.NextId(), Upload());
      }
      EXPECT_EQ(States(), "1P ww; ");
      Write(path_, "damaged again, and long enough");
    }
  }
}

TEST_F(Store, LeavesTheFileToTheProgramThatHasIt) {
  QueueStore first(path_);
  first.RowAdded(1, Upload());
  first.Flush();
  {
    QueueStore second(path_);
    EXPECT_TRUE(second.Load().empty());
    EXPECT_FALSE(second.Trouble().IsEmpty());
    second.RowAdded(1, BigTree::Wanted());
    second.RowRemoved(1);
    second.Flush();
  }
  first.RowChanged(1, RowState::Failed);
  first.Flush();
  EXPECT_TRUE(first.Trouble().IsEmpty());
  QueueStore nowhere("");
  nowhere.RowAdded(1, Upload());
  nowhere.Flush();
  EXPECT_TRUE(nowhere.Load().empty() && nowhere.Trouble().IsEmpty());
}

TEST_F(Store, KeepsLaterWhatDoesNotFitOnTheDisk) {
  ASSERT_NE(std::signal(SIGXFSZ, SIG_IGN), SIG_ERR);
  rlimit before{};
  ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &before), 0);
  const auto limit = [&](rlim_t bytes) {
    const rlimit now{bytes, before.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &now), 0);
  };
  {
    QueueStore store(path_);
    store.RowAdded(1, BigTree::Wanted());
    store.Flush();
    limit(50'000);
    std::vector<JobRecord> jobs;
    for (JobId id = 1; id <= 5000; ++id) {
      jobs.push_back({id, 0, {.remote = "file " + std::to_string(id)}});
    }
    store.DirectoryOpened(1, 0, "/d0", jobs);
    store.Flush();
    EXPECT_FALSE(store.Trouble().IsEmpty());
    for (JobId id = 1; id <= 5000; ++id) store.JobChanged(1, id, JobState::Done);
    store.RowAdded(2, Upload());
    limit(before.rlim_cur);
    EXPECT_TRUE(WaitFor([&] { return store.Trouble().IsEmpty(); }, 8s));
    store.Flush();
  }
  const Rows rows = Load();
  ASSERT_EQ(rows.size(), 2U);
  EXPECT_EQ(std::ranges::count(rows[0].jobs, JobState::Done, &JobRecord::state), 5000);
}

// What a process that is killed has said, by the files' places in the tree.
struct Said {
  static constexpr std::size_t kFiles = 4000;
  std::array<std::atomic<int>, kFiles> ended;  // is called whole
  std::array<std::atomic<bool>, kFiles> kept;  // the journal has it on the disk
};

class Killed : public Store {
 protected:
  Killed() { Find("/d0"); }
  void Find(const std::string& directory) {
    for (const TransferJob& job : tree_.Holds(directory)) {
      const std::string path = directory + "/" + job.remote;
      if (job.kind == RemoteEntry::Kind::Directory) Find(path);
      if (job.kind == RemoteEntry::Kind::File) numbers_.emplace(path, numbers_.size());
    }
  }

  // The child's part.
  [[noreturn]] void CarryOut() {
    const auto store = std::make_shared<QueueStore>(path_);
    const Rows rows = store->Load();
    if (rows.empty()) store->RowAdded(1, BigTree::Wanted());
    const auto board = rows.empty()
                           ? std::make_unique<JobBoard>(BigTree::Wanted(), 1, store)
                           : std::make_unique<JobBoard>(rows[0].what, rows[0].jobs, 1, store);
    board->Begin(false);
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) threads.emplace_back([&] { Move(*board); });
    while (!board->AllEnded()) {
      std::vector<std::size_t> moved;
      for (std::size_t i = 0; i < Said::kFiles; ++i) {
        if (moved_.at(i) && !said_.kept.at(i)) moved.push_back(i);
      }
      board->Synced();
      store->Flush();
      for (const std::size_t i : moved) said_.kept.at(i) = true;
    }
    for (std::thread& thread : threads) thread.join();
    store->RowRemoved(1);
    store->Flush();
    std::_Exit(0);
  }
  void Move(JobBoard& board) {
    std::optional<std::size_t> last;
    tree_.Carry(board, [&](const JobBoard::Work& work) {
      if (last) moved_.at(*last) = true;
      const std::size_t number = numbers_.at(work.job.remote);
      if (said_.kept.at(number)) std::_Exit(3);
      std::this_thread::sleep_for(500us);
      ++said_.ended.at(number);
      last = number;
      return JobState::Moved;
    });
  }
  // Whether the process ended by itself.
  bool Run(std::chrono::milliseconds killedAfter) {
    EXPECT_TRUE(Background::WaitForNone(5s)) << "a thread would be lost";
    const pid_t child = ::fork();
    if (child == 0) CarryOut();
    std::this_thread::sleep_for(killedAfter);
    ::kill(child, SIGKILL);
    int status = 0;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_FALSE(WIFEXITED(status) && WEXITSTATUS(status) != 0) << "what was kept came again";
    return WIFEXITED(status);
  }
  [[nodiscard]] bool IsMoved() const {
    return std::ranges::all_of(
        numbers_, [this](const auto& file) { return said_.ended.at(file.second) > 0; });
  }
  void Check() const {
    QueueStore store(path_);
    const Rows rows = store.Load();
    ASSERT_TRUE(store.Trouble().IsEmpty()) << store.Trouble().English();
    // A row goes once all of it has moved; the process may be killed just then.
    if (rows.empty() && IsMoved()) return;
    std::size_t done = 0;
    for (const QueueStore::Row& row : rows) {
      for (const JobRecord& job : row.jobs) {
        if (job.job.kind != RemoteEntry::Kind::File) continue;
        const std::string path = row.jobs[job.parent].where + "/" + job.job.remote;
        const std::size_t number = numbers_.at(path);
        if (said_.kept.at(number)) EXPECT_EQ(job.state, JobState::Done) << path;
        if (job.state != JobState::Done) continue;
        EXPECT_GT(said_.ended.at(number), 0) << path;
        ++done;
      }
    }
    std::size_t kept = 0;
    for (const auto& one : said_.kept) kept += one ? 1U : 0U;
    EXPECT_GE(done, kept);
  }

  const BigTree tree_{.files = 40};
  std::map<std::string, std::size_t> numbers_;
  std::array<std::atomic<bool>, Said::kFiles> moved_{};  // of this process: the journal was told
  Said& said_ = *static_cast<Said*>(
      ::mmap(nullptr, sizeof(Said), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));
};

TEST_F(Killed, LosesNothingThatWasKeptAndInventsNothing) {
  std::mt19937 random(std::random_device{}());
  for (int kills = 0; kills < 20 && !HasFailure();) {
    if (!Run(std::chrono::milliseconds(10 + random() % 150))) {
      ++kills;
      Check();
      continue;
    }
    EXPECT_TRUE(Load().empty());
    new (&said_) Said{};
  }
  while (!HasFailure() && !Run(5s)) Check();
  for (const auto& [path, number] : numbers_) EXPECT_GT(said_.ended.at(number), 0) << path;
  ::munmap(&said_, sizeof(Said));
}

// What the whole process computes, in seconds.
double Computed() {
  timespec time{};
  ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

TEST_F(Store, IsCheap) {
  constexpr JobId kJobs = 100'000;
  {
    QueueStore store(path_);
    store.RowAdded(1, BigTree::Wanted());
    std::vector<JobRecord> jobs;
    for (JobId id = 1; id <= kJobs; ++id) {
      const std::string name = "f" + std::to_string(id);
      jobs.push_back({id, 0, {.remote = name, .local = name, .size = 1'000'000, .modified = 1}});
    }
    store.DirectoryOpened(1, 0, "/d0", std::move(jobs));
    store.Flush();
    const double before = Computed();
    for (JobId id = 1; id <= 1000; ++id) {
      store.JobChanged(1, id, JobState::Begun);
      std::this_thread::sleep_for(1ms);
      store.JobChanged(1, id, JobState::Moved);
      if (id % 20 == 0) store.RowSynced(1);
    }
    store.Flush();
    const double took = Computed() - before;
    RecordProperty("msOfASecond", static_cast<int>(took * 1000));
    EXPECT_LT(took, 0.1) << "a thousand files a second";
  }
  EXPECT_LT(std::filesystem::file_size(path_), kJobs * 150U);
  QueueStore store(path_);
  const double before = Computed();
  const Rows rows = store.Load();
  const double took = Computed() - before;
  RecordProperty("msToLoad", static_cast<int>(took * 1000));
  EXPECT_LT(took, 0.5);
  ASSERT_EQ(rows.at(0).jobs.size(), kJobs + 1);
}

}  // namespace
}  // namespace corvane
