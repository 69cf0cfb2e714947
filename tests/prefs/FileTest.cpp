#include <fcntl.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>

#include <cerrno>
#include <functional>
#include <random>

#include "prefs/PrefsFixture.h"
#include "prefs/TemporaryFile.h"
#include "support/WaitFor.h"
#include "util/UniqueFd.h"

namespace {
// Told of each lock and each sync before it is done.
std::function<void(const char*)> hook;
}  // namespace

extern "C" int flock(int fd, int operation) noexcept {
  if (hook) hook("lock");
  return static_cast<int>(::syscall(SYS_flock, fd, operation));
}
extern "C" int fsync(int fd) {
  if (hook) hook("sync");
  return static_cast<int>(::syscall(SYS_fsync, fd));
}

namespace corvane {
namespace {

using std::chrono::steady_clock;
using std::string_literals::operator""s;

// Whatever is no set is either refused and left alone, or loads empty and is kept by a save.
TEST_F(PrefsTest, DamagedFilesAreNotLost) {
  const std::string good = FileWith("text");
  std::string flipped = good;
  flipped[4] = 'X';
  std::vector<std::pair<std::string, PREFStatus>> cases = {
      {good, 0},
      {good + "old bytes", 0},
      {std::string("\xFF\xFF\xFF\xFF", 4) + good, 0},
      {flipped, -ENOMEM},
      {std::string(4, '\0'), -ENOMEM},
      {Bytes(5000).substr(9), 0}};
  for (std::size_t i = 0; i < good.size(); ++i) cases.emplace_back(good.substr(0, i), 0);
  for (const auto& [bytes, status] : cases) {
    SCOPED_TRACE(testing::PrintToString(bytes));
    fs::remove(directory / "set.damaged");
    Write(path, bytes);
    PREFSet* set = nullptr;
    ASSERT_EQ(PREFLoadSet(app, "set", true, &set), status);
    EXPECT_EQ(Contents(path), bytes);
    if (status != 0) continue;
    const bool whole = bytes.starts_with(good);
    EXPECT_EQ(Get(set), whole ? "text" : "none");
    Put(set, "new");
    EXPECT_EQ(PREFReloadSet(set), whole ? 0 : bytes.size() < 4 ? -1 : -EIO);
    EXPECT_EQ(Get(set), whole ? "text" : "new") << "kept where the reload fails";
    Put(set, "new");
    EXPECT_EQ(PREFSaveSet(set), 0);
    EXPECT_EQ(Contents(path), FileWith("new"));
    EXPECT_EQ(Contents(directory / "set.damaged"), whole ? "" : bytes);
    PREFDisposeSet(&set);
  }
  PREFSet* const set = Load("newest");
  for (const char* bytes : {"bad", "worse"}) {
    Write(path, bytes);
    EXPECT_EQ(PREFSaveSet(set), 0);
  }
  EXPECT_EQ(Contents(directory / "set.1.damaged") + Contents(directory / "set.2.damaged"),
            "badworse");
}

TEST_F(PrefsTest, WhatCannotBeASetIsRefused) {
  Write(directory / "file", "");
  fs::create_directory(directory / "directory");
  ASSERT_EQ(::mkfifo((directory / "fifo").c_str(), 0600), 0);
  std::vector<std::pair<std::string, PREFStatus>> cases = {
      {"directory", -EISDIR}, {"file/set", -ENOTDIR}, {std::string(1024, 'n'), kPrefPathTooLong}};
  for (const char* name : {"fifo", "", "../set", "a//b", "/set", ".saving-XyZ123"})
    cases.emplace_back(name, -EINVAL);
  for (const auto& [name, status] : cases) {
    PREFSet* set = nullptr;
    EXPECT_EQ(PREFLoadSet(app, name.c_str(), true, &set), status) << name;
    EXPECT_EQ(set, nullptr);
  }
}

TEST_F(PrefsTest, ASaveIsLockedAndOnTheDiskBeforeItTakesItsPlace) {
  PREFSet* const set = Load("new");
  PREFTransaction* outer = nullptr;
  PREFTransaction* inner = nullptr;
  ASSERT_EQ(PREFBeginTransaction(set, &outer), 0);
  ASSERT_EQ(PREFBeginTransaction(set, &inner), 0);
  std::string seen;
  const UniqueFd folder(::open(directory.c_str(), O_PATH | O_CLOEXEC));
  hook = [&](const char* what) {
    seen += what + (Contents(path).empty() ? " old, "s : " new, "s);
    // As another process does when it saves another set.
    if (what == "sync"s) TemporaryFile::RemoveStale(directory, folder.get());
  };
  EXPECT_EQ(PREFSaveSet(set), 0);
  hook = nullptr;
  EXPECT_EQ(seen, "lock old, sync old, lock old, sync new, ");
  ASSERT_EQ(PREFEndTransaction(inner), 0);
  const UniqueFd other(::open(path.c_str(), O_RDWR | O_CLOEXEC));
  EXPECT_NE(::flock(other.get(), LOCK_EX | LOCK_NB), 0) << "the transaction holds the new file";
  ASSERT_EQ(PREFEndTransaction(outer), 0);
  EXPECT_EQ(::flock(other.get(), LOCK_EX | LOCK_NB), 0);
  const auto start = steady_clock::now();
  EXPECT_EQ(PREFSaveSet(set), -EBUSY);
  EXPECT_GT(steady_clock::now() - start, std::chrono::milliseconds(900));
  EXPECT_LT(steady_clock::now() - start, std::chrono::seconds(3));
}

TEST_F(PrefsTest, TheLockIsOnTheFileThatStandsThere) {
  PREFSet* const set = Load("old");
  hook = [&, done = false](const char*) mutable {
    if (!std::exchange(done, true)) SaveElsewhere("new");
  };
  EXPECT_EQ(PREFReloadSet(set), 0);
  hook = nullptr;
  EXPECT_EQ(Get(set), "new");
}

TEST_F(PrefsTest, ASaveGoesThroughALink) {
  const fs::path real = temporary.Path() / "dotfiles" / "set";
  Write(real, FileWith("old"));
  fs::create_directories(directory);
  fs::create_symlink("../../dotfiles/set", path);
  EXPECT_EQ(PREFSaveSet(Load("new")), 0);
  EXPECT_TRUE(fs::is_symlink(path));
  EXPECT_EQ(Contents(real), FileWith("new"));
}

TEST_F(PrefsTest, AFullDiskLeavesTheOldSet) {
  PREFSet* const set = Load("old");
  ASSERT_EQ(PREFSaveSet(set), 0);
  Put(set, Bytes(2000));
  const pid_t child = InChild([&] {
    const rlimit small{1000, 1000};
    std::signal(SIGXFSZ, SIG_IGN);
    return ::setrlimit(RLIMIT_FSIZE, &small) == 0 ? -PREFSaveSet(set) : 0;
  });
  EXPECT_EQ(Await(child), EFBIG);
  EXPECT_EQ(Contents(path), FileWith("old"));
  EXPECT_EQ(CountFiles(), 1) << "nothing is left over";
}

TEST_F(PrefsTest, ProcessesInTurnLoseNothing) {
  PREFSet* const set = Load("");
  ASSERT_EQ(PREFSaveSet(set), 0);
  std::vector<pid_t> children(4);
  for (pid_t& child : children) {
    child = InChild([set] {
      for (int done = 0; done < 20;) {
        PREFTransaction* transaction = nullptr;
        if (PREFBeginTransaction(set, &transaction) != 0) continue;
        if (PREFReloadSet(set) != 0) return 1;
        Put(set, Get(set) + "x");
        if (PREFSaveSet(set) != 0 || PREFEndTransaction(transaction) != 0) return 1;
        ++done;
      }
      return 0;
    });
  }
  for (const pid_t child : children) EXPECT_EQ(Await(child), 0);
  EXPECT_EQ(Contents(path), FileWith(std::string(80, 'x')));
}

TEST_F(PrefsTest, AKillAtAnyMomentLeavesAWholeSet) {
  const std::string texts[] = {Bytes(30'000), Bytes(70'001)};
  PREFSet* const set = Load();
  Put(set, texts[0]);
  ASSERT_EQ(PREFSaveSet(set), 0);
  std::minstd_rand random(20);
  int midway = 0;
  for (int kill = 0; kill < 300; ++kill) {
    const pid_t child = InChild([&] {
      for (std::size_t turn = 1;; ++turn) {
        Put(set, texts[turn % 2]);
        if (PREFSaveSet(set) != 0) return 1;
      }
    });
    EXPECT_FALSE(WaitFor([&] { return ::waitpid(child, nullptr, WNOHANG) != 0; },
                         std::chrono::milliseconds(random() % 9)));
    ::kill(child, SIGKILL);
    Await(child);
    ASSERT_TRUE(Contents(path) == FileWith(texts[0]) || Contents(path) == FileWith(texts[1]));
    if (CountFiles() > 1) ++midway;
  }
  EXPECT_GT(midway, 0) << "not one kill came during a save";
  EXPECT_EQ(PREFSaveSet(set), 0);
  EXPECT_EQ(CountFiles(), 1) << "what kills left is removed";
}

}  // namespace
}  // namespace corvane
