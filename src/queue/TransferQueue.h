#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "queue/QueueJournal.h"
#include "remote/TransferUi.h"

namespace corvane {

/// The rows of the transfer list in their order, and when each of them runs: so many at once, so
/// many for each server, tried again after a while where that may help. It starts and stops what
/// carries a row out through two functions, and knows neither workers nor windows. One thread.
class TransferQueue {
 public:
  using Clock = std::chrono::steady_clock;
  using Time = Clock::time_point;

  struct Limits {
    int rows = 5;                   ///< at once
    int rowsPerServer = 2;          ///< of those
    int tries = 5;                  ///< without progress
    std::chrono::seconds first{2};  ///< before the first of them; 5, 15 and 60 follow in proportion
    friend bool operator==(const Limits&, const Limits&) = default;
  };

  struct Row {
    RowId id = 0;
    std::string server{};  ///< rows of one server share its limit
    RowState state = RowState::Waiting;
    bool carried = false;  ///< something still works for it, which may take a moment to stop
    int tries = 0;         ///< without progress so far; counted while Again
    Time again{};          ///< while Again: when it is tried
  };

  /// How a row is carried out.
  struct Carrier {
    std::function<void(RowId)> start;  ///< Ended is called once for each start, later
    std::function<void(RowId)> stop;   ///< soon; Ended follows
  };

  /// `journal` may be null.
  TransferQueue(Carrier carrier, std::shared_ptr<QueueJournal> journal);

  void SetLimits(const Limits& limits);
  [[nodiscard]] const Limits& InForce() const { return limits_; }

  /// A new row at the end, of this server. The journal hears of it with `what`.
  void Add(RowId id, const transferStruct& what);
  /// A row that was kept, as it was; the journal knows it.
  void Restore(RowId id, const transferStruct& what, RowState state);
  /// Takes off the list what is not Running; stops what is still carried.
  void Remove(RowId id);

  /// Each does nothing where it does not fit the row's state, which CanX tells.
  [[nodiscard]] static bool CanPause(RowState state);
  [[nodiscard]] static bool CanResume(RowState state) { return state == RowState::Paused; }
  [[nodiscard]] static bool CanCancel(RowState state);
  [[nodiscard]] static bool CanRetry(RowState state);
  [[nodiscard]] static bool CanTryNow(RowState state) { return state == RowState::Again; }
  [[nodiscard]] static bool CanRemove(RowState state) { return state != RowState::Running; }
  void Pause(RowId id);
  void Resume(RowId id);  ///< Paused: waits for its turn
  void Cancel(RowId id);
  void Retry(RowId id);   ///< Failed or Cancelled: waits for its turn
  void TryNow(RowId id);  ///< Again: waits for its turn
  /// The network has come back: whatever is Again is tried now.
  void TryAllNow();
  /// Moves a row up (-1) or down (1); whether it could.
  bool Move(RowId id, int by);

  /// What carried the row out is done. `progress`: something was moved this time.
  void Ended(RowId id, TransferEnd end, bool progress, Time now);

  /// Starts what may start now; to be called after every change too. When it is to be called next;
  /// nothing where nothing waits for time.
  std::optional<Time> Tick(Time now);

  [[nodiscard]] const std::vector<Row>& Rows() const { return rows_; }
  /// Null where there is no such row.
  [[nodiscard]] const Row* Find(RowId id) const;

 private:
  [[nodiscard]] std::vector<Row>::iterator Place(RowId id);
  [[nodiscard]] Row* At(RowId id);
  void Set(Row& row, RowState state);
  /// The user's word: it counts from now on, whatever is still carried.
  void Leave(Row& row, RowState state);
  void Await(Row& row);
  void TryLater(Row& row, bool progress, Time now);
  void StartWaiting();
  [[nodiscard]] std::chrono::milliseconds Wait(int tries) const;

  const Carrier carrier_;
  const std::shared_ptr<QueueJournal> journal_;
  Limits limits_;
  std::vector<Row> rows_;
};

}  // namespace corvane
