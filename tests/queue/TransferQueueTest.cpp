#include "queue/TransferQueue.h"

#include <gtest/gtest.h>

#include <map>
#include <set>

namespace corvane {
namespace {

using namespace std::chrono_literals;

class Notebook final : public QueueJournal {
 public:
  void RowAdded(RowId row, const transferStruct&) override { told_ += "+" + std::to_string(row); }
  void RowChanged(RowId row, RowState state) override {
    told_ += " " + std::to_string(row) + "PRpafcd"[static_cast<int>(state)];
  }
  void RowsOrdered(const std::vector<RowId>& rows) override {
    told_ += " order";
    for (const RowId row : rows) told_ += std::to_string(row);
  }
  void RowRemoved(RowId row) override { told_ += "-" + std::to_string(row); }
  void DirectoryOpened(RowId, JobId, const std::string&, std::vector<JobRecord>) override {}
  void JobChanged(RowId, JobId, JobState) override {}
  void RowSynced(RowId) override {}
  void Flush() override {}
  std::string Take() { return std::exchange(told_, {}); }

 private:
  std::string told_;
};

// Rows are told apart by their numbers; "h" is the first server. What is carried is in `runs_`.
class Rows : public testing::Test {
 protected:
  void Add(RowId id, const std::string& host = "h") {
    transferStruct what;
    what.site.host = host;
    queue_.Add(id, what);
  }
  // The row's states by their letters: Waiting, Running, Paused, Again, Failed, Cancelled, Done;
  // "!" where something that is to stop is still carried.
  std::string States() {
    std::string states;
    for (const TransferQueue::Row& row : queue_.Rows()) {
      states += "WRPAFCD"[static_cast<int>(row.state)];
      if (row.carried && row.state != RowState::Running) states += '!';
    }
    return states;
  }
  std::string AfterTick() {
    next_ = queue_.Tick(now_);
    return States();
  }
  void End(RowId id, TransferEnd end = TransferEnd::Finished, bool progress = false) {
    stopped_.erase(id);
    EXPECT_EQ(runs_.erase(id), 1U) << id;
    queue_.Ended(id, end, progress, now_);
  }

  TransferQueue::Time now_{1000s};
  std::optional<TransferQueue::Time> next_;
  std::set<RowId> runs_;
  std::set<RowId> stopped_;
  std::string order_;
  std::shared_ptr<Notebook> journal_ = std::make_shared<Notebook>();
  TransferQueue queue_{
      {.start =
           [this](RowId id) {
             EXPECT_TRUE(runs_.insert(id).second) << "started while it runs";
             order_ += std::to_string(id);
           },
       .stop = [this](RowId id) { EXPECT_TRUE(stopped_.insert(id).second) << "stopped twice"; }},
      journal_};
};

TEST_F(Rows, StartInTheirOrderWithinTheLimits) {
  for (const RowId id : {1, 2, 3}) Add(id);
  Add(4, "I");
  Add(5, "i");
  Add(6, "i");
  Add(7, "k");
  Add(8, "l");
  EXPECT_EQ(AfterTick(), "RRWRRWRW") << "two of a server, whatever the case of its name, and five";
  End(4);
  EXPECT_EQ(AfterTick(), "RRWDRRRW");
  queue_.SetLimits({.rows = 2, .rowsPerServer = 1});
  EXPECT_EQ(AfterTick(), "RRWDRRRW") << "nothing is stopped";
  for (const RowId id : {5, 6, 7}) End(id);
  EXPECT_EQ(AfterTick(), "RRWDDDDW");
  for (int i = 0; i < 5; ++i) EXPECT_TRUE(queue_.Move(8, -1));
  queue_.SetLimits({.rows = 4, .rowsPerServer = 3});
  order_.clear();
  EXPECT_EQ(AfterTick(), "RRRRDDDD");
  EXPECT_EQ(order_, "83") << "as they stand in the list now";
  EXPECT_FALSE(queue_.Move(1, -1) || queue_.Move(7, 1) || queue_.Move(9, 1));
}

TEST_F(Rows, TryAgainAfterGrowingWaitsAndThenFail) {
  queue_.SetLimits({.rows = 1, .tries = 5, .first = 4s});
  Add(1);
  for (const auto wait : {4s, 10s, 30s, 120s, 120s}) {
    EXPECT_EQ(AfterTick(), "R");
    End(1, TransferEnd::Again);
    EXPECT_EQ(AfterTick(), "A");
    EXPECT_EQ(next_, now_ + wait);
    now_ = *next_ - 1ms;
    EXPECT_EQ(AfterTick(), "A");
    now_ += 1ms;
  }
  EXPECT_EQ(AfterTick(), "R");
  End(1, TransferEnd::Again);
  EXPECT_EQ(AfterTick(), "F");
  EXPECT_FALSE(next_);
  queue_.Retry(1);
  EXPECT_EQ(AfterTick(), "R");
  End(1, TransferEnd::Again, false);
  queue_.TryNow(1);
  EXPECT_EQ(AfterTick(), "R");
  End(1, TransferEnd::Again, false);
  EXPECT_EQ(queue_.Find(1)->tries, 2);
  queue_.TryAllNow();
  EXPECT_EQ(AfterTick(), "R");
  End(1, TransferEnd::Again, true);
  EXPECT_EQ(queue_.Find(1)->tries, 1) << "counted without progress";
  Add(2);
  EXPECT_EQ(AfterTick(), "AR") << "while it waits for its time it takes no place";
  now_ += 4s;
  EXPECT_EQ(AfterTick(), "WR") << "and then waits for one";
}

TEST_F(Rows, StandAsTheUserWantsThemWhateverIsStillCarried) {
  struct Case {
    const char* what;
    std::vector<void (TransferQueue::*)(RowId)> does;  // while it runs
    TransferEnd end;
    std::string before;  // its end
    std::string after;
  };
  using Q = TransferQueue;
  const std::vector<Case> cases{
      {"pause", {&Q::Pause}, TransferEnd::Cancelled, "P!", "P"},
      {"pause, failed", {&Q::Pause}, TransferEnd::Failed, "P!", "P"},
      {"pause, lost", {&Q::Pause}, TransferEnd::Again, "P!", "P"},
      {"pause, done already", {&Q::Pause}, TransferEnd::Finished, "P!", "D"},
      {"cancel", {&Q::Cancel}, TransferEnd::Cancelled, "C!", "C"},
      {"cancel, lost", {&Q::Cancel}, TransferEnd::Again, "C!", "C"},
      {"cancel, done already", {&Q::Cancel}, TransferEnd::Finished, "C!", "D"},
      {"pause and resume", {&Q::Pause, &Q::Resume}, TransferEnd::Cancelled, "W!", "R"},
      {"pause twice", {&Q::Pause, &Q::Resume, &Q::Pause}, TransferEnd::Cancelled, "P!", "P"},
      {"cancel and retry", {&Q::Cancel, &Q::Retry}, TransferEnd::Failed, "W!", "R"},
      {"pause, cancel", {&Q::Pause, &Q::Cancel}, TransferEnd::Failed, "C!", "C"},
      {"what does not fit",
       {&Q::Resume, &Q::Retry, &Q::TryNow, &Q::Remove},
       TransferEnd::Failed,
       "R",
       "F"},
      {"nothing", {}, TransferEnd::Cancelled, "R", "C"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    Add(1);
    EXPECT_EQ(AfterTick(), "R");
    for (const auto does : c.does) (queue_.*does)(1);
    EXPECT_EQ(AfterTick(), c.before) << "it is not started again meanwhile";
    End(1, c.end);
    EXPECT_EQ(AfterTick(), c.after);
    queue_.Pause(1);
    queue_.Remove(1);
    EXPECT_EQ(States(), "");
    runs_.clear();
    stopped_.clear();
    queue_.Ended(1, TransferEnd::Failed, true, now_);
  }
}

TEST_F(Rows, StoppedOnesKeepTheirPlaceUntilTheyHaveEnded) {
  queue_.SetLimits({.rows = 1});
  Add(1);
  Add(2);
  EXPECT_EQ(AfterTick(), "RW");
  queue_.Pause(1);
  EXPECT_EQ(stopped_, std::set<RowId>{1});
  EXPECT_EQ(AfterTick(), "P!W");
  End(1, TransferEnd::Cancelled);
  EXPECT_EQ(AfterTick(), "PR");
  queue_.Pause(2);
  queue_.Remove(2);
  queue_.Resume(1);
  EXPECT_EQ(AfterTick(), "R");
  queue_.Ended(2, TransferEnd::Finished, true, now_);
  EXPECT_EQ(States(), "R") << "nobody knows it any more";
}

TEST_F(Rows, AreToldToTheJournal) {
  Add(1);
  Add(2);
  EXPECT_EQ(AfterTick(), "RR");
  EXPECT_EQ(journal_->Take(), "+1+2 1R 2R");
  End(1, TransferEnd::Again);
  queue_.Pause(2);
  EXPECT_EQ(journal_->Take(), " 1a 2p");
  End(2);
  EXPECT_EQ(journal_->Take(), "-2") << "what is done is not kept";
  Add(3);
  EXPECT_TRUE(queue_.Move(3, -1));
  EXPECT_EQ(journal_->Take(), "+3 order13");
  queue_.Remove(2);
  queue_.Cancel(1);
  queue_.Remove(1);
  EXPECT_EQ(journal_->Take(), " 1c-1");
  queue_.Restore(9, {}, RowState::Failed);
  EXPECT_EQ(States() + journal_->Take(), "WF");
}

}  // namespace
}  // namespace corvane
