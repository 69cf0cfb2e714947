#include "workers/TransferPlan.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <tuple>

#include "support/TemporaryDirectory.h"

namespace corvane {
namespace {

using Kind = RemoteEntry::Kind;
using Precision = RemoteTime::Precision;
using Entry = TransferPlan::Entry;

constexpr std::int64_t kThen = 1'750'000'000;  // of every local file
constexpr std::int64_t kHour = 3600;

std::optional<RemoteTime> At(std::int64_t later, Precision precision = Precision::Second,
                             bool utc = true) {
  return RemoteTime{kThen + later, precision, utc};
}

class Plans : public testing::Test {
 protected:
  Plans() {
    Make("table.csv", 100);
    Make("part.tar.gz", 10);
    Make("a (2)", 1);
    Make("a", 1);
    for (const char* name : {"dir", "wide"}) std::filesystem::create_directory(folder_ / name);
    std::filesystem::create_symlink("table.csv", folder_ / "link");
  }
  void Make(const std::string& name, std::size_t size) const {
    const std::filesystem::path path = folder_ / name;
    std::ofstream(path) << std::string(size, 'x');
    const timespec times[] = {{kThen, 0}, {kThen, 0}};
    ASSERT_EQ(::utimensat(AT_FDCWD, path.c_str(), times, 0), 0);
  }
  /// "name policy" of each entry that goes; the policy's number.
  [[nodiscard]] static std::string Going(const TransferPlan& plan) {
    std::string going;
    for (const Entry& entry : plan.entries) {
      if (entry.leftOut) continue;
      going += (going.empty() ? "" : ", ") + entry.local + " " +
               std::to_string(static_cast<int>(entry.policy));
    }
    return going;
  }

  const TemporaryDirectory temp_;
  const std::filesystem::path folder_ = temp_.Path();
};

TEST_F(Plans, EachChoiceTouchesOnlyWhatItSays) {
  const auto now = At(0);
  const auto later = At(100);
  const auto day = At(30 * kHour, Precision::Day, false);
  // The entry, what is chosen, and what goes: 0 creates, 1 replaces, 2 resumes, 3 skips.
  const std::tuple<Entry, Policy, const char*> cases[] = {
      {{"/new", "new"}, Policy::Replace, "new 0"},
      {{"/t", "table.csv", Kind::File, 100, now}, Policy::Skip, ""},
      {{"/t", "table.csv", Kind::File, 100, now}, Policy::Replace, "table.csv 1"},
      {{"/t", "table.csv", Kind::File, 100, now}, Policy::KeepBoth, "table (2).csv 0"},
      {{"/t", "table.csv", Kind::File, 100, now}, Policy::Newer, ""},
      {{"/t", "table.csv", Kind::File, 100, At(1)}, Policy::Newer, ""},
      {{"/t", "table.csv", Kind::File, 100, later}, Policy::Newer, "table.csv 1"},
      {{"/t", "table.csv", Kind::File, 100, At(-100)}, Policy::Newer, ""},
      {{"/t", "table.csv", Kind::File, 99, At(-100)}, Policy::Newer, "table.csv 1"},
      {{"/t", "table.csv", Kind::File, 100}, Policy::Newer, ""},
      {{"/t", "table.csv", Kind::File, -1, now}, Policy::Newer, ""},
      // A clock of no zone tells the age only where no zone could change it.
      {{"/t", "table.csv", Kind::File, 100, At(13 * kHour, Precision::Minute, false)},
       Policy::Newer,
       ""},
      {{"/t", "table.csv", Kind::File, 100, At(15 * kHour, Precision::Minute, false)},
       Policy::Newer,
       "table.csv 1"},
      {{"/t", "table.csv", Kind::File, 100, At(-13 * kHour, Precision::Minute, false)},
       Policy::Newer,
       ""},
      {{"/t", "table.csv", Kind::File, 100, At(-25 * kHour, Precision::Day, false)},
       Policy::Newer,
       ""},
      {{"/t", "table.csv", Kind::File, 100, day}, Policy::Newer, "table.csv 1"},
      // Only what may be unfinished is gone on with.
      {{"/p", "part.tar.gz", Kind::File, 100}, Policy::Resume, "part.tar.gz 2"},
      {{"/p", "part.tar.gz", Kind::File, -1}, Policy::Resume, "part.tar.gz 2"},
      {{"/p", "part.tar.gz", Kind::File, 10}, Policy::Resume, ""},
      {{"/p", "part.tar.gz", Kind::File, 9}, Policy::Resume, ""},
      {{"/p", "part.tar.gz", Kind::File, 9}, Policy::KeepBoth, "part (2).tar.gz 0"},
      // A directory is gone into, whatever becomes of the files in it.
      {{"/d", "dir", Kind::Directory}, Policy::Skip, "dir 3"},
      {{"/d", "dir", Kind::Directory}, Policy::KeepBoth, "dir 5"},
      // What nothing can take the place of stays.
      {{"/d", "dir", Kind::File, 1}, Policy::Replace, "dir 0"},
      {{"/d", "dir", Kind::File, 1}, Policy::Skip, ""},
      {{"/d", "dir", Kind::File, 1}, Policy::KeepBoth, "dir (2) 0"},
      {{"/l", "link", Kind::File, 1}, Policy::Newer, "link 0"},
      {{"/t", "table.csv", Kind::Directory}, Policy::Replace, "table.csv 0"},
  };
  for (const auto& [entry, chosen, going] : cases) {
    TransferPlan down = TransferPlan::Look(folder_, {entry});
    down.SettleExisting(chosen);
    EXPECT_EQ(Going(down), going) << entry.local << static_cast<int>(chosen);
  }
}

TEST_F(Plans, EveryEntryGetsANameOfItsOwn) {
  const std::string longest(251, 'x');
  Make(longest + ".txt", 1);
  // The first that would get a name has it, and no number is given twice.
  const std::pair<std::vector<Entry>, const char*> cases[] = {
      {{{"/1", "n.txt"}, {"/2", "n.txt"}, {"/3", "n.txt"}}, "n.txt 0, n (2).txt 0, n (3).txt 0"},
      {{{"/1", "n"}, {"/2", "n"}, {"/3", "n (2)"}}, "n 0, n (3) 0, n (2) 0"},
      {{{"/1", "a"}, {"/2", "a (2)"}, {"/3", "a"}}, "a (4) 0, a (5) 0, a (3) 0"},
      {{{"/1", ".a"}, {"/2", ".a"}, {"/3", " (2).b"}, {"/4", " (2).b"}},
       ".a 0, .a (2) 0,  (2).b 0,  (2) (2).b 0"},
      {{{"/1", "wide", Kind::Directory}, {"/2", "wide", Kind::Directory}}, "wide 5, wide (2) 0"},
  };
  for (const auto& [entries, going] : cases) {
    TransferPlan plan = TransferPlan::Look(folder_, entries);
    plan.SettleExisting(Policy::KeepBoth);
    EXPECT_EQ(Going(plan), going);
  }
  TransferPlan plan = TransferPlan::Look(folder_, {{"/1", longest + ".txt"}});
  plan.SettleExisting(Policy::KeepBoth);
  EXPECT_EQ(plan.entries[0].local, std::string(247, 'x') + " (2).txt");
}

// The listing that is shown tells what an upload meets.
TEST_F(Plans, AnUploadMeetsWhatTheListingShows) {
  const TransferPlan::Names shown{{"table.csv", {Kind::File, 100, At(-100)}},
                                  {"table (2).csv", {}},
                                  {"part", {Kind::File, 1}},
                                  {"dir", {Kind::Directory}},
                                  {"link", {Kind::Link}}};
  const auto from = [this](const char* name) { return (folder_ / name).string(); };
  const std::vector<Entry> entries{{from("table.csv"), "table.csv"},
                                   {from("part.tar.gz"), "part"},
                                   {from("dir"), "dir"},
                                   {from("wide"), "link"},
                                   {from("a"), "a"},
                                   {from("a (2)"), "a"}};
  const std::pair<Policy, const char*> cases[] = {
      {Policy::Skip, "dir 3, a 0, a (2) 0"},
      {Policy::Newer, "table.csv 1, part 1, dir 4, link 0, a 0, a (2) 0"},
      {Policy::Resume, "part 2, dir 2, link 0, a 0, a (2) 0"},
      {Policy::KeepBoth, "table (3).csv 0, part (2) 0, dir 5, link (2) 0, a 0, a (2) 0"},
  };
  for (const auto& [chosen, going] : cases) {
    TransferPlan plan = TransferPlan::LookHere("/pub", entries, shown);
    EXPECT_EQ(plan.CountExisting(), 4U);
    plan.SettleExisting(chosen);
    EXPECT_EQ(Going(plan), going);
  }
}

}  // namespace
}  // namespace corvane
