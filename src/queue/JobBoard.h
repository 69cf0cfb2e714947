#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "kit/Mutex.h"
#include "queue/QueueJournal.h"
#include "queue/transferStruct.h"
#include "remote/TransferUi.h"

namespace corvane {

/// The jobs of one row: those that were chosen, and those that are found in folders on the way.
/// Those who carry the row out take one job after another from it. It lasts as long as the row, so
/// that a transfer that was paused or lost goes on where it stood. Any thread.
class JobBoard {
 public:
  /// `what` names the jobs that were chosen. `journal`, which may be null, hears of what becomes of
  /// them, under the number `row`.
  explicit JobBoard(const transferStruct& what, RowId row = 0,
                    std::shared_ptr<QueueJournal> journal = {});
  /// The jobs of a row that was kept, in the order of their numbers.
  JobBoard(const transferStruct& what, std::vector<JobRecord> kept, RowId row,
           std::shared_ptr<QueueJournal> journal);

  /// A job that was taken.
  struct Work {
    JobId id = 0;
    JobId parent = kNoJob;  ///< the directory in which it was found
    TransferJob job{};      ///< with whole paths
    std::string shown{};    ///< its path from the top of the transfer, for the user
    std::string name{};     ///< its last name here, for a download; not yet known to be a safe one
    bool kept = false;      ///< an earlier try may have begun it and not have said so
    [[nodiscard]] bool InFolder() const { return parent != kNoJob; }
  };

  /// Begins a run: jobs that were put back can be taken again, and with `retry` those that failed.
  void Begin(bool retry) EXCLUDES(lock_);
  /// The next job, of the directory `near` where there is one: waits while others may still find
  /// some. Nothing when there is none left for this run, or after Stop.
  [[nodiscard]] std::optional<Work> Take(JobId near) EXCLUDES(lock_);
  /// No more jobs in this run; those who wait in Take return.
  void Stop() EXCLUDES(lock_);

  /// A directory was looked through: it stands at `where` on the server and at `local` here, and
  /// holds these, named by their last names. False where it holds nothing, and is to be ended.
  bool Open(const Work& directory, const std::string& where, std::vector<TransferJob> jobs)
      EXCLUDES(lock_);
  /// A job has ended. The directory in which it was found, where nothing in it is left to do: to be
  /// ended in its turn.
  [[nodiscard]] std::optional<Work> End(JobId id, JobState state) EXCLUDES(lock_);
  /// A job is left for the next run: it failed for a reason that may pass. A directory that is open
  /// stays so.
  void PutBack(JobId id) EXCLUDES(lock_);
  /// A beginning of the file stands at its place now. `modified` says which state of a file that is
  /// sent this is of, in seconds since 1970.
  void SetBegun(JobId id, std::optional<std::int64_t> modified = {}) EXCLUDES(lock_);
  /// Waits until what became of the jobs so far is kept.
  void Flush() const;
  /// A file is whole, which is known by this; what is known of the least known one.
  [[nodiscard]] Proof Prove(Proof proof) EXCLUDES(lock_);
  [[nodiscard]] Proof LeastProof() const EXCLUDES(lock_);
  /// So many bytes of its files stood at their places at one time. Whether that is more than ever
  /// before.
  [[nodiscard]] bool Reach(std::int64_t bytes) EXCLUDES(lock_);
  /// Whether folders are among the jobs that were chosen.
  [[nodiscard]] bool HasTree() const EXCLUDES(lock_);
  /// What was Moved could not be written to the disk: it is to be looked at again.
  void Unsynced() EXCLUDES(lock_);
  /// What was Moved is on the disk.
  void Synced() EXCLUDES(lock_);

  /// The directories above a job on the server, as they were told; the nearest last.
  [[nodiscard]] std::vector<std::string> Above(JobId id) const EXCLUDES(lock_);

  struct Count {
    std::int64_t files = 0;   ///< known so far
    std::int64_t done = 0;    ///< of those: whole, or left alone
    std::int64_t failed = 0;  ///< jobs of all kinds
    std::int64_t bytes = 0;   ///< of all files, as far as their sizes are known
    std::int64_t doneBytes = 0;
    bool complete = false;  ///< no directory is left to be looked through
    bool sized = true;      ///< the size of every file is known
  };
  [[nodiscard]] Count Counted() const EXCLUDES(lock_);
  /// Jobs that could be taken now.
  [[nodiscard]] int Ready() const EXCLUDES(lock_);
  /// Whether every job has ended.
  [[nodiscard]] bool AllEnded() const EXCLUDES(lock_);
  /// What a job is turned out to be another than was known: a file or a directory, of that size, -1
  /// when not known.
  void Describe(JobId id, RemoteEntry::Kind kind, std::int64_t size) EXCLUDES(lock_);
  /// How many jobs were chosen.
  [[nodiscard]] std::size_t ChosenCount() const { return chosen_; }
  /// The jobs that were chosen and have not ended.
  [[nodiscard]] std::vector<Work> Chosen() const EXCLUDES(lock_);

 private:
  /// A job, and what only directories need.
  struct Entry {
    JobId parent = kNoJob;
    TransferJob job;
    JobState state = JobState::Waiting;
    bool taken = false;  // somebody works on it
    bool later = false;  // not in this run any more
  };
  struct Directory {
    std::string where;  // its own path on the server, once open
    std::string local;
    std::string shown;
    std::uint32_t left = 0;     // what it holds and has not ended
    std::deque<JobId> waiting;  // files in it that can be taken
    int taken = 0;              // of what it holds
  };

  [[nodiscard]] static bool HasEnded(JobState state);
  JobId Add(JobId parent, TransferJob job, JobState state) REQUIRES(lock_);
  void Queue(JobId id) REQUIRES(lock_);
  void CountIn(const Entry& entry, int sign) REQUIRES(lock_);
  void CountDone(const Entry& entry, int sign) REQUIRES(lock_);
  [[nodiscard]] std::optional<JobId> Next(JobId near) REQUIRES(lock_);
  [[nodiscard]] JobId FileOf(JobId directory) REQUIRES(lock_);
  [[nodiscard]] JobId OtherDirectory() const REQUIRES(lock_);
  void SetTaken(JobId id, bool taken) REQUIRES(lock_);
  [[nodiscard]] Work Whole(JobId id) const REQUIRES(lock_);
  void Reopen(JobId id, std::vector<std::pair<JobId, JobState>>& changes) REQUIRES(lock_);
  void EndEmptied(std::vector<std::pair<JobId, JobState>>& changes) REQUIRES(lock_);
  void Restore(JobRecord record) REQUIRES(lock_);
  void Note(JobId id, JobState state) const EXCLUDES(lock_);

  const std::string top_;  // the local folder, or the remote directory, from which paths are shown
  const bool download_;
  const bool kept_;
  const RowId row_;
  const std::shared_ptr<QueueJournal> journal_;
  const std::size_t chosen_;
  mutable Mutex lock_;
  Condition changed_;
  std::deque<Entry> jobs_ GUARDED_BY(lock_);
  std::map<JobId, Directory> directories_ GUARDED_BY(lock_);  // kNoJob: what was chosen
  std::set<JobId> filled_ GUARDED_BY(lock_);    // directories that hold files to be taken
  std::deque<JobId> unread_ GUARDED_BY(lock_);  // directories to be looked through
  Count count_ GUARDED_BY(lock_);
  int ready_ GUARDED_BY(lock_) = 0;          // files that can be taken
  int looking_ GUARDED_BY(lock_) = 0;        // directories that somebody looks through
  int taken_ GUARDED_BY(lock_) = 0;          // jobs of all kinds that somebody works on
  std::int64_t left_ GUARDED_BY(lock_) = 0;  // jobs of all kinds that have not ended
  int unsized_ GUARDED_BY(lock_) = 0;
  std::int64_t reached_ GUARDED_BY(lock_) = 0;
  std::optional<Proof> proof_ GUARDED_BY(lock_);
  bool stopped_ GUARDED_BY(lock_) = false;
};

}  // namespace corvane
