#pragma once

#include <chrono>
#include <functional>
#include <string>

namespace corvane {

/// The threads that work behind the windows, counted so that the end of the process can wait for
/// them, for a limited time.
class Background {
 public:
  /// Runs `work` on a detached thread of its own, named `name` (15 bytes are kept). `work` owns all
  /// that it uses. False when the system has no thread to give; then nothing ran. Any thread.
  static bool Start(const std::string& name, std::function<void()> work);

  /// How many started threads have not ended. Any thread.
  [[nodiscard]] static int Count();

  /// Waits until no started thread is left; false when `limit` passed first. Any thread but theirs.
  [[nodiscard]] static bool WaitForNone(std::chrono::milliseconds limit);
};

}  // namespace corvane
