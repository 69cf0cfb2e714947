#pragma once

#include <atomic>
#include <chrono>
#include <map>
#include <memory>
#include <optional>

#include "DriveOptions.h"
#include "DriveRow.h"
#include "queue/JobBoard.h"
#include "queue/QueueStore.h"
#include "queue/TransferQueue.h"
#include "queue/TransferSpeed.h"
#include "workers/FileTransfer.h"
#include "workers/SessionPool.h"

namespace corvane::drive {

/// Carries transfers out as the transfer window does, and waits for them. One thread, but for
/// Cancel.
class DriveQueue {
 public:
  /// `journal` may be null.
  DriveQueue(const Options& options, std::shared_ptr<QueueJournal> journal);

  void Add(RowId id, const transferStruct& what);
  /// A row that was left, to be gone on with.
  void Resume(const QueueStore::Row& kept);
  /// A row that has failed waits for its turn again, in the next Run.
  void Retry(RowId id);
  /// Any thread: cancels all rows.
  void Cancel();
  /// Until nothing runs or waits any more. `ended` hears of each row once it stands still.
  void Run(const std::function<void(RowId, RowState, const Text& why)>& ended);
  /// What has moved of a row, and how many of its files are whole.
  [[nodiscard]] std::int64_t Moved(RowId id) const { return carried_.at(id).row->Progress().moved; }
  [[nodiscard]] std::int64_t Files(RowId id) const { return carried_.at(id).row->Progress().files; }

 private:
  struct Carried {
    transferStruct what;
    std::shared_ptr<JobBoard> board;
    std::shared_ptr<Row> row;
    std::shared_ptr<FileTransfer> worker;  // of the last run
  };

  void Add(RowId id, const transferStruct& what, std::shared_ptr<JobBoard> board);
  void Start(RowId id);
  void Stop(RowId id);
  void CancelAll();
  [[nodiscard]] bool IsBusy() const;

  const Options options_;
  const std::shared_ptr<QueueJournal> journal_;
  const std::shared_ptr<Ends> ends_ = std::make_shared<Ends>();
  const std::shared_ptr<TransferSpeed> speed_ = std::make_shared<TransferSpeed>();
  const std::shared_ptr<SessionPool> pool_;
  std::map<RowId, Carried> carried_;
  std::atomic<bool> cancelled_{false};
  TransferQueue queue_;
};

}  // namespace corvane::drive
