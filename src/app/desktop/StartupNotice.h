#pragma once

#include <string>

class QWidget;

namespace corvane {

/// What the desktop calls a start that it makes for the user. It shows a busy pointer until that
/// start is over, and lets a window that comes of it to the front. The toolkit sees to this where a
/// start opens its own window; here it is for one that hands its request over.
class StartupNotice {
 public:
  /// Longer ones are none.
  static constexpr std::size_t kLongest = 1024;

  /// This process's own, "" when it was not started by a desktop.
  [[nodiscard]] static std::string Id();
  /// In the running program, once `window` shows what the start `id` was for. GUI thread.
  static void Complete(const std::string& id, QWidget* window);
};

}  // namespace corvane
