#pragma once

#include <chrono>
#include <cstdint>
#include <deque>

namespace corvane {

/// How fast a count of bytes grows: the mean of the last three seconds. It is told the count again
/// and again, at least twice a second for the figure to be good. A value; one thread.
class PaceMeter {
 public:
  using Time = std::chrono::steady_clock::time_point;

  /// `moved`: bytes since the transfer has begun. Measures from the first of them on.
  void Feed(std::int64_t moved, Time now);
  /// Bytes in a second; 0 as long as too little is known, and when nothing moves.
  [[nodiscard]] double Rate() const;

 private:
  struct Sample {
    Time when;
    std::int64_t moved;
  };
  std::deque<Sample> samples_;
};

}  // namespace corvane
