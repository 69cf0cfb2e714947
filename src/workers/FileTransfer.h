#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <vector>

#include "kit/Mutex.h"
#include "queue/Governor.h"
#include "queue/JobBoard.h"
#include "queue/TransferSpeed.h"
#include "queue/transferStruct.h"
#include "remote/BrowserUi.h"
#include "remote/RemoteSession.h"
#include "remote/TransferUi.h"
#include "remote/Waits.h"
#include "workers/FileMover.h"
#include "workers/MThread.h"
#include "workers/SessionPool.h"
#include "workers/TransferRun.h"
#include "workers/TreeBounds.h"

namespace corvane {

/// Carries out the jobs of one row, with several sessions at once where that is faster, and reports
/// into the row. Own thread; Cancel from any thread.
///
/// An entry that the server or this machine refuses is noted in the row, and the rest goes on. A
/// full disk ends the transfer; a busy server or a lost connection ends it for now, with what is
/// left on the board for another try.
class FileTransfer : public MThread {
 public:
  /// With sessions of `pool`. `speed` may be null.
  FileTransfer(std::shared_ptr<TransferUi> row, transferStruct description,
               std::shared_ptr<JobBoard> board, std::shared_ptr<SessionPool> pool,
               std::shared_ptr<TransferSpeed> speed);
  /// With the session of a browser's `window`, which is connected already and stays open.
  FileTransfer(std::shared_ptr<TransferUi> row, transferStruct description,
               std::shared_ptr<JobBoard> board, std::shared_ptr<RemoteSession> session,
               std::shared_ptr<BrowserUi> window, std::shared_ptr<TransferSpeed> speed);

  void Cancel() override;
  void CheckConnections() override;

  /// How long nothing may come or go while a file moves, whatever the session waits for meanwhile.
  /// It ends each of its waits by itself; this is for what goes on for ever all the same.
  std::chrono::milliseconds stallLimit{Waits().Together()};
  /// The same for a while after CheckConnections.
  std::chrono::milliseconds checkLimit = std::chrono::seconds(5);
  TreeBounds bounds;  ///< before Run

 protected:
  std::int32_t Execute() override;

 private:
  using Clock = std::chrono::steady_clock;

  void SetWorking(bool working) EXCLUDES(lock_);
  /// What is to be known before anything moves.
  Outcome Prepare();
  Outcome OpenTarget();
  void LookAtSources();
  /// Carries everything out; what ended it, or Done where the board has no more.
  Outcome Carry();
  [[nodiscard]] bool AddMover(bool first) EXCLUDES(lock_);
  [[nodiscard]] std::shared_ptr<FileMover> MakeMover(bool first);
  [[nodiscard]] std::vector<std::shared_ptr<FileMover>> Movers() EXCLUDES(lock_);
  /// Drops those that have ended. How one of them ended that ends the transfer for now.
  void Reap() EXCLUDES(lock_);
  void Govern() EXCLUDES(lock_);
  void Watch() EXCLUDES(lock_);
  void Tell() EXCLUDES(lock_);
  /// Writes out what the transfer has made.
  Outcome Sync();
  void Finish(const Outcome& outcome);
  [[nodiscard]] Text Summary(const Outcome& outcome) const;

  const std::shared_ptr<TransferUi> row_;
  const transferStruct description_;
  const std::shared_ptr<JobBoard> board_;
  const std::shared_ptr<SessionPool> pool_;       // null on a window's connection
  const std::shared_ptr<RemoteSession> session_;  // null with sessions of the pool
  const std::shared_ptr<BrowserUi> window_;       // likewise
  const std::shared_ptr<TransferSpeed> speed_;
  TransferRun run_;
  Governor governor_;
  Outcome ended_;               // what ended the last mover that did not end by itself
  Clock::time_point noMore_{};  // no mover is added until then
  Clock::time_point told_{};
  std::int64_t doneBefore_ = 0;                   // files, when this run began
  std::atomic<Clock::time_point> checkedFrom_{};  // CheckConnections was called; epoch: it was not
  Mutex lock_;
  Condition changed_;
  std::vector<std::shared_ptr<FileMover>> movers_ GUARDED_BY(lock_);
  bool working_ GUARDED_BY(lock_) = false;  // the session is this transfer's to interrupt
  bool woken_ GUARDED_BY(lock_) = false;
};

}  // namespace corvane
