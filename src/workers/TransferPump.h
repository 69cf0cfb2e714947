#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "remote/TransferUi.h"

namespace corvane {

/// The buffer of one file's transfer and the count of what went through it. The buffer starts at
/// the size that the user set and doubles while reads fill it.
class TransferPump {
 public:
  static constexpr std::size_t kMinBuffer = 1024;
  static constexpr std::size_t kMaxBuffer = std::size_t{1024} * 1024;

  TransferPump(TransferProgress& progress, std::int32_t bufferSize);

  /// Where the next read goes.
  [[nodiscard]] std::span<char> Buffer() { return buffer_; }
  /// A read brought so many bytes: a full buffer grows for the next one. Moves the bytes: call it
  /// when they are written.
  void Grow(std::size_t read);
  /// So many bytes have arrived where they belong: updates the row's record.
  void Count(std::size_t bytes);

 private:
  TransferProgress& progress_;
  std::vector<char> buffer_;
  std::int64_t total_ = 0;
  std::chrono::steady_clock::time_point begin_ = std::chrono::steady_clock::now();
};

}  // namespace corvane
