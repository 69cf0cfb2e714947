#pragma once

#include <string>

namespace corvane {

/// The X property through which the target of a drag tells where it wants a file saved (the direct
/// save protocol, XDS). It stands on the window that owns the drag's selection, which exists only
/// while a drag runs. Where the platform is not X11 nothing happens. GUI thread.
class DirectSave {
 public:
  [[nodiscard]] static bool Available();

  /// Proposes a name, raw bytes.
  static void Propose(const std::string& name);
  /// What stands there now: the name proposed or, once the target has answered, a URL.
  [[nodiscard]] static std::string Read();
  static void Remove();
};

}  // namespace corvane
