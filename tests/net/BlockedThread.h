#pragma once

#include <unistd.h>

#include <atomic>
#include <fstream>
#include <functional>
#include <string>
#include <thread>

#include "support/WaitFor.h"

namespace corvane {

/// Runs work that is expected to block, on a thread of its own.
class BlockedThread {
 public:
  explicit BlockedThread(const std::function<void()>& work)
      : thread_([this, work] {
          id_ = ::gettid();
          work();
          ended_ = true;
        }) {}
  ~BlockedThread() { thread_.join(); }

  /// Waits until the kernel shows the thread asleep.
  [[nodiscard]] bool WaitUntilAsleep() const {
    return WaitFor([this] {
      std::ifstream file("/proc/self/task/" + std::to_string(id_) + "/stat");
      std::string line;
      return id_ != 0 && std::getline(file, line) && line.find(") S ") != std::string::npos;
    });
  }
  [[nodiscard]] bool WaitUntilEnded() const {
    return WaitFor([this] { return ended_.load(); });
  }

 private:
  std::atomic<int> id_ = 0;
  std::atomic<bool> ended_ = false;
  std::thread thread_;
};

}  // namespace corvane
