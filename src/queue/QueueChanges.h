#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "queue/QueueJournal.h"

namespace corvane {

/// What of the queue has changed since it was written last. A value.
struct QueueChanges {
  /// A directory that was looked through, and what it holds.
  struct Opened {
    JobId directory = 0;
    std::string where{};
    std::vector<JobRecord> jobs{};
  };
  /// Of one row, in the order in which it is to be written.
  struct Row {
    bool removed = false;  ///< nothing else counts
    std::optional<transferStruct> added{};
    std::vector<Opened> opened{};
    std::optional<RowState> state{};
    std::map<JobId, JobState> jobs{};  ///< the last state of each
  };

  std::map<RowId, Row> rows{};
  std::vector<RowId> order{};  ///< of all rows; empty where it is as it was

  [[nodiscard]] bool IsEmpty() const { return rows.empty() && order.empty(); }
};

}  // namespace corvane
