#pragma once

#include <chrono>
#include <thread>

namespace corvane {

/// Waits until `predicate` holds; false when the deadline passed first.
template <typename Predicate>
[[nodiscard]] bool WaitFor(Predicate predicate,
                           std::chrono::milliseconds deadline = std::chrono::seconds(5)) {
  const auto end = std::chrono::steady_clock::now() + deadline;
  while (!predicate()) {
    if (std::chrono::steady_clock::now() >= end) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
  }
  return true;
}

}  // namespace corvane
