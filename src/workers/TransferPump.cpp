#include "workers/TransferPump.h"

#include <algorithm>

namespace corvane {

TransferPump::TransferPump(TransferRun& run, FileProgress& progress, Digest& digest)
    : run_(run),
      progress_(progress),
      digest_(digest),
      buffer_(std::clamp(static_cast<std::size_t>(std::max(run.what.bufferSize, 0)), kMinBuffer,
                         kMaxBuffer)) {}

std::span<char> TransferPump::Buffer() {
  const std::span<char> whole(buffer_);
  return run_.speed == nullptr ? whole : whole.first(run_.speed->Piece(whole.size()));
}

void TransferPump::Count(std::size_t bytes) {
  digest_.Add(std::span(buffer_).first(bytes));
  progress_.Add(static_cast<std::int64_t>(bytes));
  if (run_.speed != nullptr) {
    progress_.Rest(true);
    run_.speed->Count(static_cast<std::int64_t>(bytes), run_.cancelled);
    progress_.Rest(false);
  }
  if (bytes < buffer_.size() || buffer_.size() >= kMaxBuffer) return;
  const std::size_t size = std::min(buffer_.size() * 2, kMaxBuffer);
  // A new one in place of resize(): what the old one holds is of no use any more.
  buffer_ = {};
  buffer_.resize(size);
}

}  // namespace corvane
