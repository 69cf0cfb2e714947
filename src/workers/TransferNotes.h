#pragma once

#include <string>

#include "kit/Mutex.h"
#include "remote/Outcome.h"

namespace corvane {

class TransferUi;

/// What became of a transfer's entries: notes in the row for what failed or was left out, and what
/// failed last. Any thread.
class TransferNotes {
 public:
  /// `row` is not owned.
  explicit TransferNotes(TransferUi& row) : row_(row) {}

  /// An entry failed. One that is all there is gets no note: its reason is the transfer's.
  void Failed(const std::string& shown, const Outcome& outcome, bool alone) EXCLUDES(lock_);
  /// An entry was left out on purpose, or a remark on one.
  void Note(const Text& text) EXCLUDES(lock_);

  /// What failed last, and which entry that was.
  [[nodiscard]] Text Why() const EXCLUDES(lock_);
  [[nodiscard]] std::string FailedEntry() const EXCLUDES(lock_);

 private:
  static constexpr int kMaxNotes = 1000;

  TransferUi& row_;
  mutable Mutex lock_;
  int notes_ GUARDED_BY(lock_) = 0;
  std::string failedEntry_ GUARDED_BY(lock_);
  Text why_ GUARDED_BY(lock_);
};

}  // namespace corvane
