#pragma once

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstddef>
#include <filesystem>
#include <functional>
#include <future>
#include <iterator>
#include <vector>

#include "kit/Background.h"
#include "support/WaitFor.h"

namespace corvane {

inline std::ptrdiff_t OpenDescriptors() {
  using Iterator = std::filesystem::directory_iterator;
  return std::distance(Iterator("/proc/self/fd"), Iterator());
}

/// Carries tasks out on so many threads, and expects that they leave neither thread nor descriptor.
inline void RunAtOnce(const std::vector<std::function<void()>>& tasks, std::size_t threads) {
  const std::ptrdiff_t before = OpenDescriptors();
  std::atomic<std::size_t> next = 0;
  std::vector<std::future<void>> running(threads);
  for (std::future<void>& thread : running) {
    thread = std::async(std::launch::async, [&] {
      for (std::size_t at = next++; at < tasks.size(); at = next++) tasks[at]();
    });
  }
  for (std::future<void>& thread : running) thread.get();
  EXPECT_TRUE(Background::WaitForNone(std::chrono::seconds(20)));
  EXPECT_TRUE(WaitFor([&] { return OpenDescriptors() == before; }, std::chrono::seconds(20)))
      << OpenDescriptors();
}

}  // namespace corvane
