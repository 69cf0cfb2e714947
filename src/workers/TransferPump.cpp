#include "workers/TransferPump.h"

#include <algorithm>

namespace corvane {

TransferPump::TransferPump(TransferProgress& progress, std::int32_t bufferSize)
    : progress_(progress),
      buffer_(
          std::clamp(static_cast<std::size_t>(std::max(bufferSize, 0)), kMinBuffer, kMaxBuffer)) {
  progress_.done = 0;
  progress_.elapsed = 0;
  progress_.changed = true;
}

void TransferPump::Grow(std::size_t read) {
  if (read < buffer_.size() || buffer_.size() >= kMaxBuffer) return;
  const std::size_t size = std::min(buffer_.size() * 2, kMaxBuffer);
  // A new one in place of resize(): what the old one holds is of no use any more.
  buffer_ = {};
  buffer_.resize(size);
}

void TransferPump::Count(std::size_t bytes) {
  total_ += static_cast<std::int64_t>(bytes);
  const auto elapsed = std::chrono::steady_clock::now() - begin_;
  progress_.done.store(total_, std::memory_order_relaxed);
  progress_.elapsed.store(std::chrono::duration_cast<std::chrono::microseconds>(elapsed).count(),
                          std::memory_order_relaxed);
  progress_.changed.store(true, std::memory_order_release);
}

}  // namespace corvane
