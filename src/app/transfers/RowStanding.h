#pragma once

#include <chrono>

#include "queue/QueueJournal.h"

namespace corvane {

/// How a row stands in the queue. A value.
struct RowStanding {
  RowState state = RowState::Waiting;
  int before = 0;  ///< rows that wait too and have their turn before it
  int tries = 0;   ///< while Again: the number of the next try,
  int most = 0;    ///< of so many,
  std::chrono::steady_clock::time_point again{};  ///< and when it is

  friend bool operator==(const RowStanding&, const RowStanding&) = default;
};

}  // namespace corvane
