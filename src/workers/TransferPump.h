#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "util/Digest.h"
#include "workers/TransferRun.h"

namespace corvane {

/// What the bytes of one file pass through: a buffer that starts at the size that the user set and
/// doubles while reads fill it, a checksum, the count in the row, and the limit of speed. One
/// thread.
class TransferPump {
 public:
  static constexpr std::size_t kMinBuffer = 1024;
  static constexpr std::size_t kMaxBuffer = std::size_t{1024} * 1024;

  /// The references outlive the object.
  TransferPump(TransferRun& run, FileProgress& progress, Digest& digest);

  /// Where the next read goes.
  [[nodiscard]] std::span<char> Buffer();
  /// So many bytes of the buffer have arrived where they belong. A full buffer grows for the next
  /// read. Waits as long as the limit of speed demands.
  void Count(std::size_t bytes);

 private:
  TransferRun& run_;
  FileProgress& progress_;
  Digest& digest_;
  std::vector<char> buffer_;
};

}  // namespace corvane
