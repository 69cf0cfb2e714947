#include "queue/JobBoard.h"

#include <gtest/gtest.h>

#include <atomic>
#include <fstream>
#include <map>
#include <random>
#include <thread>

#include "queue/BigTree.h"
#include "queue/QueueStore.h"
#include "support/Files.h"
#include "support/TemporaryDirectory.h"

namespace corvane {
namespace {

using Work = JobBoard::Work;

// What ended, by its path on the server, and how often.
class Ended {
 public:
  void Add(const std::string& path) {
    const MutexLock hold(lock_);
    ++times_[path];
  }
  void ExpectOnce(int count) {
    const MutexLock hold(lock_);
    EXPECT_EQ(times_.size(), static_cast<std::size_t>(count));
    for (const auto& [path, times] : times_) EXPECT_EQ(times, 1) << path;
  }

 private:
  Mutex lock_;
  std::map<std::string, int> times_ GUARDED_BY(lock_);
};

void InThreads(int count, const std::function<void(unsigned)>& work) {
  std::vector<std::thread> threads;
  for (int i = 0; i < count; ++i) threads.emplace_back(work, static_cast<unsigned>(i));
  for (std::thread& thread : threads) thread.join();
}

TEST(JobBoardTest, GivesEveryJobToOneOfManyWhoTake) {
  const BigTree tree;
  JobBoard board(BigTree::Wanted());
  Ended files;
  std::atomic<int> working{0};
  for (int run = 0; !board.AllEnded() || board.Counted().failed > 0; ++run) {
    ASSERT_LT(run, 50);
    board.Begin(true);
    InThreads(8, [&](unsigned seed) {
      std::mt19937 random(seed + static_cast<unsigned>(run) * 100);
      tree.Carry(board, [&](const Work& work) -> std::optional<JobState> {
        EXPECT_EQ(work.job.local, "/target" + work.job.remote + "~");
        EXPECT_EQ("/" + work.shown, work.job.remote);
        EXPECT_LE(++working, 8);
        if (random() % 16 == 0) std::this_thread::yield();
        --working;
        const unsigned luck = random() % 100;
        if (luck < 2) return std::nullopt;
        if (luck < 4) return JobState::Failed;
        if (luck == 4) board.Stop();
        files.Add(work.job.remote);
        return JobState::Moved;
      });
    });
    const JobBoard::Count count = board.Counted();
    EXPECT_LE(count.done + count.failed, count.files);
  }
  files.ExpectOnce(tree.AllFiles());
  const JobBoard::Count count = board.Counted();
  EXPECT_EQ(count.files, tree.AllFiles());
  EXPECT_EQ(count.done, count.files);
  EXPECT_EQ(count.failed, 0);
  EXPECT_EQ(count.bytes, tree.AllFiles() / 10 * 45);
  EXPECT_EQ(count.doneBytes, count.bytes);
  EXPECT_TRUE(count.complete && count.sized);
  EXPECT_EQ(board.Ready(), 0);
  EXPECT_TRUE(board.Chosen().empty());
}

TEST(JobBoardTest, StaysNearAndLooksAheadByOne) {
  JobBoard board(BigTree::Wanted());
  const BigTree tree{.files = 2};
  auto one = board.Take(kNoJob);
  ASSERT_TRUE(one);
  EXPECT_EQ(board.Chosen().size(), 1U);
  board.Open(*one, "/d0", tree.Holds("/d0"));
  board.PutBack(one->id);  // one that is open stays so
  EXPECT_EQ(board.Ready(), 6);
  const auto file = board.Take(one->id);
  ASSERT_TRUE(file);
  EXPECT_EQ(file->shown, "d0/f0") << "of its directory before another is looked through";
  const auto inner = board.Take(kNoJob);
  ASSERT_TRUE(inner);
  EXPECT_EQ(inner->shown, "d0/d0");
  const auto other = board.Take(kNoJob);
  ASSERT_TRUE(other);
  EXPECT_EQ(other->shown, "d0/f1") << "one looks through, the others move";
  const auto third = board.Take(kNoJob);
  ASSERT_TRUE(third);
  EXPECT_EQ(third->shown, "d0/d1") << "unless there is nothing to move";
  EXPECT_EQ(board.Above(third->id), std::vector<std::string>{"/d0"});
  EXPECT_FALSE(board.Counted().complete);
}

TEST(JobBoardTest, LearnsWhatAChosenEntryIs) {
  transferStruct what;
  what.download = false;
  what.jobs = {{.remote = "/up/a", .local = "/here/a"}, {.remote = "/up/b", .local = "/here/b"}};
  JobBoard board(what);
  EXPECT_EQ(board.Counted().files, 2);
  EXPECT_FALSE(board.Counted().sized);
  const auto a = board.Take(kNoJob);
  ASSERT_TRUE(a);
  board.Describe(0, RemoteEntry::Kind::Directory, -1);
  board.Describe(1, RemoteEntry::Kind::File, 7);
  board.Open(*a, "/up/a", {{.remote = "x", .local = "x", .size = 1}});
  const JobBoard::Count count = board.Counted();
  EXPECT_EQ(count.files, 2);
  EXPECT_EQ(count.bytes, 8);
  EXPECT_TRUE(count.complete && count.sized);
  board.Describe(1, RemoteEntry::Kind::Directory, -1);
  EXPECT_FALSE(board.Counted().complete);
  EXPECT_EQ(board.Take(a->id)->shown, "a/x");
  EXPECT_EQ(board.Take(kNoJob)->shown, "b");
}

// What fails is tried again after the program was started anew, and nothing else.
TEST(JobBoardTest, GoesOnFromWhatWasKept) {
  const TemporaryDirectory folder;
  const std::string path = folder.Path() / "queue.sqlite";
  const BigTree tree{.files = 4};
  Ended files;
  std::mt19937 random(1);
  int runs = 0;
  for (bool ended = false; !ended; ++runs) {
    ASSERT_LT(runs, 100);
    const auto store = std::make_shared<QueueStore>(path);
    auto rows = store->Load();
    ASSERT_TRUE(store->Trouble().IsEmpty()) << store->Trouble().English();
    if (runs == 0) store->RowAdded(1, BigTree::Wanted());
    const auto board = runs == 0
                           ? std::make_unique<JobBoard>(BigTree::Wanted(), 1, store)
                           : std::make_unique<JobBoard>(rows.at(0).what, rows.at(0).jobs, 1, store);
    int left = 40;
    board->Begin(true);
    tree.Carry(*board, [&](const Work& work) -> std::optional<JobState> {
      EXPECT_EQ(work.job.local, "/target" + work.job.remote + "~");
      if (--left == 0) board->Stop();
      if (random() % 4 == 0) return JobState::Failed;
      files.Add(work.job.remote);
      return JobState::Done;
    });
    const JobBoard::Count count = board->Counted();
    ended = board->AllEnded() && count.failed == 0;
    store->Flush();
    // A file that is in use cannot be read twice.
    const std::string copy = folder.Path() / "copy.sqlite";
    for (const char* part : {"", "-wal"}) Write(copy + part, Contents(path + part));
    rows = QueueStore(copy).Load();
    const JobBoard same(rows.at(0).what, rows.at(0).jobs, 1, {});
    EXPECT_EQ(same.Counted().files, count.files);
    EXPECT_EQ(same.Counted().done, count.done);
    EXPECT_EQ(same.Counted().failed, count.failed);
    EXPECT_EQ(same.Counted().bytes, count.bytes);
    EXPECT_EQ(same.AllEnded(), board->AllEnded());
  }
  files.ExpectOnce(tree.AllFiles());
}

// Notes what it is told, by letters, and how many jobs could be taken when it was to be kept.
class Letters final : public QueueJournal {
 public:
  void RowAdded(RowId, const transferStruct&) override {}
  void RowChanged(RowId, RowState) override {}
  void RowsOrdered(const std::vector<RowId>&) override {}
  void RowRemoved(RowId) override {}
  void DirectoryOpened(RowId, JobId, const std::string&, std::vector<JobRecord> jobs) override {
    told += "open" + std::to_string(jobs.size());
  }
  void JobChanged(RowId, JobId job, JobState state) override {
    told += " " + std::to_string(job) + "wbomdf"[static_cast<int>(state)];
  }
  void RowSynced(RowId) override { told += " synced"; }
  void Flush() override { told += " kept" + std::to_string(board->Ready()); }

  const JobBoard* board = nullptr;
  std::string told;
};

// A name that was free may be this row's own after a crash: it is kept before it is used.
TEST(JobBoardTest, KeepsWhichNamesItHasChosenBeforeTheyAreUsed) {
  for (const Policy policy : {Policy::CreateNew, Policy::Replace, Policy::Resume, Policy::Skip,
                              Policy::Newer, Policy::KeepBoth}) {
    const auto journal = std::make_shared<Letters>();
    transferStruct what = BigTree::Wanted();
    what.jobs[0].policy = policy;
    JobBoard board(what, 1, journal);
    journal->board = &board;
    const auto work = board.Take(kNoJob);
    ASSERT_TRUE(work);
    board.Open(*work, "/d0", {{.remote = "a"}, {.remote = "b"}});
    const bool byName = policy == Policy::Skip || policy == Policy::KeepBoth;
    EXPECT_EQ(journal->told, byName ? "open2 kept0" : "open2");
    EXPECT_EQ(board.Ready(), 2);
  }
}

// What could not be written to the disk is no longer done, nor are the folders above it.
TEST(JobBoardTest, TakesBackWhatCouldNotBeSynced) {
  const auto journal = std::make_shared<Letters>();
  JobBoard board(BigTree::Wanted(), 1, journal);
  journal->board = &board;
  const auto directory = board.Take(kNoJob);
  ASSERT_TRUE(directory);
  board.Open(*directory, "/d0", {{.remote = "a", .size = 5}, {.remote = "b", .size = 7}});
  const auto carry = [&](const std::string& expected) {
    std::string taken;
    while (const auto work = board.Take(kNoJob)) {
      taken += work->job.remote + (work->job.begun ? "! " : " ");
      for (auto above = board.End(work->id, JobState::Moved); above;)
        above = board.End(above->id, JobState::Moved);
    }
    EXPECT_EQ(taken, expected);
    EXPECT_TRUE(board.AllEnded());
    EXPECT_EQ(board.Counted().doneBytes, 12);
  };
  carry("/d0/a /d0/b ");
  journal->told.clear();
  board.Unsynced();
  EXPECT_EQ(journal->told, " 1b 0o 2b");
  EXPECT_EQ(board.Counted().done, 0);
  EXPECT_EQ(board.Counted().doneBytes, 0);
  EXPECT_FALSE(board.AllEnded());
  carry("/d0/a! /d0/b! ");
  board.Synced();
  board.Unsynced();
  EXPECT_TRUE(board.AllEnded()) << "it is on the disk";
}

// Kilobytes that the process has in memory.
long Resident() {
  long all = 0;
  long resident = 0;
  std::ifstream("/proc/self/statm") >> all >> resident;
  return resident * 4;
}

TEST(JobBoardTest, HoldsManyJobs) {
  transferStruct what;
  for (int i = 0; i < 100'000; ++i) {
    const std::string name = "image-" + std::to_string(i) + ".jpeg";
    what.jobs.push_back({.remote = "/photographs/" + name, .local = "/home/me/" + name, .size = i});
  }
  const long before = Resident();
  const auto begin = std::chrono::steady_clock::now();
  JobBoard board(what);
  EXPECT_LT(Resident() - before, 100'000);
  int ended = 0;
  for (; auto work = board.Take(kNoJob); ++ended) (void)board.End(work->id, JobState::Done);
  EXPECT_EQ(ended, 100'000);
  EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(2));
}

}  // namespace
}  // namespace corvane
