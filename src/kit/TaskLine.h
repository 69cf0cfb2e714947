#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>

namespace corvane {

/// Runs tasks one after another, in the order in which they are added, on a thread of its own that
/// is there while there are any. Any thread. What is left when the object goes is still run.
class TaskLine {
 public:
  /// `name` is the thread's; 15 bytes of it are kept.
  explicit TaskLine(const std::string& name);

  /// Returns at once. `task` owns all that it uses; what it throws ends it alone.
  void Add(std::function<void()> task);
  /// Waits until all is done; false when `limit` passed first. Not on the line's own thread.
  bool Wait(std::chrono::milliseconds limit);

 private:
  struct State;
  const std::shared_ptr<State> state_;
};

}  // namespace corvane
