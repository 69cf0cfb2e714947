#include "queue/SpeedLimit.h"

#include <algorithm>
#include <thread>

namespace corvane {
namespace {

using Seconds = std::chrono::duration<double>;

constexpr Seconds kSlice(0.02);       // after which a waiting thread looks again
constexpr Seconds kTiny(0.002);       // a wait that is left for the next time
constexpr std::int64_t kPieces = 20;  // a second
constexpr std::int64_t kLeast = 1024;

}  // namespace

void SpeedLimit::Pay(std::int64_t limit) {
  const Clock::time_point now = Clock::now();
  const double earned = static_cast<double>(limit) * Seconds(now - at_).count();
  paid_ = std::min(static_cast<double>(counted_), paid_ + earned);
  at_ = now;
}

void SpeedLimit::Count(std::int64_t bytes, const std::atomic<bool>& cancelled) {
  std::int64_t limit = limit_;
  if (limit <= 0 || bytes <= 0) return;
  std::int64_t mine = 0;
  {
    const MutexLock hold(lock_);
    Pay(limit);
    mine = counted_ += bytes;
  }
  while (!cancelled) {
    limit = limit_;
    if (limit <= 0) return;
    Seconds left{};
    {
      const MutexLock hold(lock_);
      Pay(limit);
      left = Seconds((static_cast<double>(mine) - paid_) / static_cast<double>(limit));
    }
    if (left < kTiny) return;
    std::this_thread::sleep_for(std::min(left, kSlice));
  }
}

std::size_t SpeedLimit::Piece(std::size_t most) const {
  const std::int64_t limit = limit_;
  if (limit <= 0) return most;
  return std::min(most, static_cast<std::size_t>(std::max(limit / kPieces, kLeast)));
}

}  // namespace corvane
