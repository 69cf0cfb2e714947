#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

#include "kit/ThreadSafety.h"

namespace corvane {

/// A std::mutex whose use clang checks at compile time.
class CAPABILITY("mutex") Mutex {
 public:
  void lock() ACQUIRE() { mutex_.lock(); }
  void unlock() RELEASE() { mutex_.unlock(); }

 private:
  std::mutex mutex_;
};

/// Holds a Mutex for the length of a scope.
class SCOPED_CAPABILITY MutexLock {
 public:
  explicit MutexLock(Mutex& mutex) ACQUIRE(mutex) : mutex_(mutex) { mutex_.lock(); }
  ~MutexLock() RELEASE() { mutex_.unlock(); }
  MutexLock(const MutexLock&) = delete;
  MutexLock& operator=(const MutexLock&) = delete;

 private:
  Mutex& mutex_;
};

/// A condition variable for Mutex. The caller holds the mutex and re-tests its condition in a loop.
class Condition {
 public:
  void Wait(Mutex& mutex) REQUIRES(mutex) { condition_.wait(mutex); }

  /// False once the deadline has passed.
  [[nodiscard]] bool WaitUntil(Mutex& mutex, std::chrono::steady_clock::time_point deadline)
      REQUIRES(mutex) {
    return condition_.wait_until(mutex, deadline) == std::cv_status::no_timeout;
  }

  void NotifyOne() { condition_.notify_one(); }
  void NotifyAll() { condition_.notify_all(); }

 private:
  std::condition_variable_any condition_;
};

}  // namespace corvane
