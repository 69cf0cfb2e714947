#pragma once

#include <string>

#include "remote/Outcome.h"

namespace corvane {

class TransferUi;

/// What became of a transfer's entries: notes in the row for what failed or was left out, and one
/// text for the whole. One thread.
class TransferNotes {
 public:
  /// `row` is not owned; `chosen`: how many entries the user chose.
  TransferNotes(TransferUi& row, std::size_t chosen) : row_(row), chosen_(chosen) {}

  /// An entry begins.
  void Begin() { ++entries_; }
  /// An entry failed. One that is all there is gives its reason as the transfer's, without a note.
  void Failed(const std::string& shown, const Outcome& outcome);
  /// An entry was left out on purpose, or a remark on one.
  void Note(const Text& text);

  /// What ends the transfer: nothing after it is tried.
  void Stop() { stopped_ = true; }
  [[nodiscard]] bool AllDone() const { return failed_ == 0 && !stopped_; }
  /// What failed, for the user.
  [[nodiscard]] Text Summary() const;

 private:
  static constexpr int kMaxNotes = 1000;

  TransferUi& row_;
  const std::size_t chosen_;
  int entries_ = 0;
  int failed_ = 0;
  int notes_ = 0;
  bool stopped_ = false;
  std::string failedEntry_;  // the last that failed
  Text why_;
};

}  // namespace corvane
