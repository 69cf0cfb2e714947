#pragma once

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "queue/TransferJob.h"
#include "queue/transferStruct.h"

namespace corvane {

/// A row of the transfer list, for as long as it is kept.
using RowId = std::int64_t;

/// How a row stands.
enum class RowState : std::uint8_t {
  Waiting = 0,  ///< for its turn
  Running = 1,
  Paused = 2,     ///< by the user, or by the end of the program
  Again = 3,      ///< it failed for now and is tried again in a while
  Failed = 4,     ///< in whole or in part
  Cancelled = 5,  ///< by the user
  Done = 6,
};

/// A job of one row, counted from 0 in the order in which they became known.
using JobId = std::uint32_t;
inline constexpr JobId kNoJob = std::numeric_limits<JobId>::max();

enum class JobState : std::uint8_t {
  Waiting = 0,
  Begun = 1,   ///< a part of its file stands at its place
  Open = 2,    ///< of a directory: what it holds is known, and not all of that has ended
  Moved = 3,   ///< whole, but not yet known to be on the disk
  Done = 4,    ///< whole and on the disk, or left alone as its policy has it
  Failed = 5,  ///< refused for good
};

/// A job as it is kept. One that was chosen has whole paths; one that was found in a directory has
/// its last names, below the directory's `where` and local path.
struct JobRecord {
  JobId id = 0;
  JobId parent = kNoJob;  ///< the directory in which it was found
  TransferJob job{};
  JobState state = JobState::Waiting;
  std::string where{};  ///< of a directory that was looked through: its own path on the server

  friend bool operator==(const JobRecord&, const JobRecord&) = default;
};

/// Hears of every change of the queue, to keep it. Any thread; every call returns at once.
class QueueJournal {
 public:
  virtual ~QueueJournal() = default;
  /// A new row at the end of the list, with the jobs that were chosen.
  virtual void RowAdded(RowId row, const transferStruct& what) = 0;
  virtual void RowChanged(RowId row, RowState state) = 0;
  /// The rows in a new order.
  virtual void RowsOrdered(const std::vector<RowId>& rows) = 0;
  virtual void RowRemoved(RowId row) = 0;
  /// A directory was looked through: it is open, stands at `where` and holds these.
  virtual void DirectoryOpened(RowId row, JobId directory, const std::string& where,
                               std::vector<JobRecord> jobs) = 0;
  virtual void JobChanged(RowId row, JobId job, JobState state) = 0;
  /// What had moved is on the disk: all jobs of the row that are Moved become Done.
  virtual void RowSynced(RowId row) = 0;
  /// Waits until everything told so far is kept. Not on the GUI thread.
  virtual void Flush() = 0;
};

}  // namespace corvane
