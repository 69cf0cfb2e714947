#pragma once

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>

#include "kit/Mutex.h"

namespace corvane {

/// How many bytes a second all that share it may move together. Any thread.
class SpeedLimit {
 public:
  /// 0 or less for no limit. Takes effect on those who wait already.
  void Set(std::int64_t bytesPerSecond) { limit_ = bytesPerSecond; }

  /// Counts `bytes` that were moved and waits as long as the limit demands; `cancelled` ends the
  /// wait soon. Without a limit it costs one look at an atomic.
  void Count(std::int64_t bytes, const std::atomic<bool>& cancelled);
  /// How many bytes should be moved at a time, so that the pace is even: at most `most`.
  [[nodiscard]] std::size_t Piece(std::size_t most) const;

 private:
  using Clock = std::chrono::steady_clock;

  /// Pays for the time that has passed.
  void Pay(std::int64_t limit) REQUIRES(lock_);

  std::atomic<std::int64_t> limit_{0};
  Mutex lock_;
  std::int64_t counted_ GUARDED_BY(lock_) = 0;  // bytes so far
  double paid_ GUARDED_BY(lock_) = 0;           // of those, by `at_`; idle time buys none
  Clock::time_point at_ GUARDED_BY(lock_){};
};

}  // namespace corvane
