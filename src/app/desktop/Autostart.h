#pragma once

#include <string>

namespace corvane {

/// The entry in the session's autostart folder that puts the icon into the tray at login. GUI
/// thread.
class Autostart {
 public:
  /// Whether it is there and not switched off by the desktop's own means.
  [[nodiscard]] static bool IsSet();
  /// Writes or removes it. Why that could not be done, "" when it was.
  [[nodiscard]] static std::string Set(bool on);
};

}  // namespace corvane
