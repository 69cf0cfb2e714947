#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "kit/Mutex.h"
#include "queue/JobBoard.h"
#include "queue/SpeedLimit.h"
#include "queue/transferStruct.h"
#include "remote/BrowserUi.h"
#include "remote/Habits.h"
#include "remote/TransferUi.h"
#include "util/Digest.h"
#include "util/LocalFolder.h"
#include "workers/TransferNotes.h"
#include "workers/TreeBounds.h"

namespace corvane {

/// What those share who carry one transfer out together. Any thread, but for what is set before
/// they begin.
class TransferRun {
 public:
  TransferRun(TransferUi& ui, const transferStruct& description, JobBoard& jobs,
              const std::atomic<bool>& cancel, SpeedLimit* limit, BrowserUi* browser)
      : row(ui),
        what(description),
        board(jobs),
        cancelled(cancel),
        speed(limit),
        window(browser),
        notes(ui),
        keepsTimes(description.keepTimes),
        keepsFolderTimes(description.keepTimes) {}

  TransferUi& row;
  const transferStruct& what;
  JobBoard& board;
  const std::atomic<bool>& cancelled;
  SpeedLimit* const speed;  ///< null for none
  BrowserUi* const window;  ///< whose connection is used; null with connections of its own
  LocalFolder target;       ///< of a download; set before
  std::shared_ptr<Habits> habits = std::make_shared<Habits>();  ///< set before

  /// The files are written out together at the end: those of trees, and where there are several.
  /// Set before.
  bool syncsAtEnd = false;
  TreeBounds bounds;                     ///< set before
  std::atomic<std::int64_t> planned{0};  ///< entries of the folders looked through
  TransferNotes notes;

  /// A file begins to move.
  [[nodiscard]] bool BeginFile(const std::string& remote, const Text& status);
  /// A file is whole, which is known by this.
  void Count(Proof proof);
  /// LocalFull where the folder of a download is not where it is looked for any more: there is no
  /// place for what follows either.
  [[nodiscard]] Outcome LookForTarget() const;
  /// A job was put back for a reason that may pass.
  void NoteDelay(const Outcome& outcome) EXCLUDES(lock_);
  /// The last such reason; Done where there was none.
  [[nodiscard]] Outcome Delay() EXCLUDES(lock_);
  /// So much stands at its place now: what a run has come to is the most of it.
  void NoteReach();
  [[nodiscard]] std::int64_t Reached() const { return reached_; }
  /// The server was to set a time: a refusal is said once, and nothing of that kind is tried again.
  void NoteTime(const Outcome& outcome, bool folder) EXCLUDES(lock_);
  [[nodiscard]] bool KeepsTimes(bool folder) const {
    return folder ? keepsFolderTimes : keepsTimes;
  }

 private:
  std::atomic<bool> keepsTimes;        // of files; the server has not refused to
  std::atomic<bool> keepsFolderTimes;  // likewise of folders
  std::atomic<std::int64_t> reached_{0};
  Mutex lock_;
  Outcome delay_ GUARDED_BY(lock_);
};

/// What is known where such checksums agree.
[[nodiscard]] Proof ProofBy(DigestKind kind);

/// The bytes of one file on its way, as its row counts them. What does not become whole is taken
/// off again.
class FileProgress {
 public:
  /// `heard` becomes the moment of each byte, in steady milliseconds.
  FileProgress(TransferProgress& progress, std::atomic<std::int64_t>& heard)
      : progress_(progress), heard_(heard) {}
  ~FileProgress() {
    if (!whole_) progress_.there -= there_;
  }
  FileProgress(const FileProgress&) = delete;
  FileProgress& operator=(const FileProgress&) = delete;

  /// The file begins at so many bytes, which stand there already.
  void Begin(std::int64_t there);
  void Add(std::int64_t bytes);
  /// Work that moves nothing, however long it takes: from now on nothing is missed; or again.
  void Rest(bool rests);
  /// It is whole.
  void Keep() { whole_ = true; }

 private:
  TransferProgress& progress_;
  std::atomic<std::int64_t>& heard_;
  std::int64_t there_ = 0;
  bool whole_ = false;
};

}  // namespace corvane
