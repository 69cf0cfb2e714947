#include "DriveQueue.h"

#include <algorithm>
#include <utility>

#include "ftp/MFtp.h"

namespace corvane::drive {

using Clock = std::chrono::steady_clock;

DriveQueue::DriveQueue(const Options& options, std::shared_ptr<QueueJournal> journal)
    : options_(options),
      journal_(std::move(journal)),
      pool_(std::make_shared<SessionPool>([waits = options.waits](const Site& site,
                                                                  std::shared_ptr<OwnerUi> owner,
                                                                  std::shared_ptr<Habits> habits) {
        auto session = std::make_shared<MFtp>(site, std::move(owner), nullptr, std::move(habits));
        session->SetWaits(waits);
        return session;
      })),
      queue_({.start = [this](RowId id) { Start(id); }, .stop = [this](RowId id) { Stop(id); }},
             journal_) {
  speed_->down.Set(options.limit);
  speed_->up.Set(options.limit);
  queue_.SetLimits({.tries = options.tries});
}

void DriveQueue::Add(RowId id, const transferStruct& what) {
  queue_.Add(id, what);
  Add(id, what, std::make_shared<JobBoard>(what, id, journal_));
}

void DriveQueue::Add(RowId id, const transferStruct& what, std::shared_ptr<JobBoard> board) {
  carried_[id] = {.what = what,
                  .board = std::move(board),
                  .row = std::make_shared<Row>(options_, id, ends_),
                  .worker = nullptr};
}

void DriveQueue::Resume(const QueueStore::Row& kept) {
  transferStruct what = kept.what;
  if (what.site.user == "anonymous") what.site.password = kGuest;
  for (const JobRecord& record : kept.jobs)
    if (record.parent == kNoJob) what.jobs.push_back(record.job);
  auto board = std::make_shared<JobBoard>(what, kept.jobs, kept.id, journal_);
  queue_.Restore(kept.id, what, kept.state);
  Add(kept.id, what, board);
  if (kept.state == RowState::Failed) board->Begin(true);
  queue_.Resume(kept.id);
  queue_.Retry(kept.id);
}

void DriveQueue::Retry(RowId id) {
  carried_.at(id).board->Begin(true);
  queue_.Retry(id);
}

void DriveQueue::Cancel() {
  cancelled_ = true;
  ends_->Wake();
}

void DriveQueue::Start(RowId id) {
  Carried& carried = carried_.at(id);
  carried.worker = std::make_shared<FileTransfer>(carried.row, carried.what, carried.board, pool_,
                                                  options_.limit > 0 ? speed_ : nullptr);
  if (!carried.worker->Run())
    ends_->Add({id, TransferEnd::Failed, Text("The system has no thread to give.")});
}

void DriveQueue::Stop(RowId id) {
  if (carried_.at(id).worker) carried_.at(id).worker->Cancel();
}

void DriveQueue::CancelAll() {
  for (const auto& [id, carried] : carried_) queue_.Cancel(id);
}

bool DriveQueue::IsBusy() const {
  return std::ranges::any_of(queue_.Rows(), [](const TransferQueue::Row& row) {
    return row.carried || row.state == RowState::Waiting || row.state == RowState::Again;
  });
}

void DriveQueue::Run(const std::function<void(RowId, RowState, const Text& why)>& ended) {
  constexpr std::chrono::hours kLong{24};
  auto last = Clock::now() + options_.cancelAfter.value_or(kLong);
  for (;;) {
    const auto next = queue_.Tick(Clock::now());
    if (!IsBusy()) break;
    for (const Ends::End& end : ends_->Wait(std::min(last, next.value_or(last)))) {
      const Carried& carried = carried_.at(end.row);
      const bool progress = carried.row->Progress().advanced;
      queue_.Ended(end.row, end.state, progress, Clock::now());
      const RowState state = queue_.Find(end.row)->state;
      if (state != RowState::Again) ended(end.row, state, end.why);
    }
    if (Clock::now() < last && !cancelled_.exchange(false)) continue;
    last = Clock::now() + kLong;
    CancelAll();
  }
  pool_->Close();
}

}  // namespace corvane::drive
