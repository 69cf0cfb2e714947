#pragma once

#include <string>

#include "remote/Site.h"

namespace corvane {

/// One saved connection. All texts are the user's own. A port of 0 stands for one that could not be
/// read: the entry stays in the list and cannot be connected to.
struct Shortcut {
  std::string label{};
  Site site{};
  std::string
      folder{};  ///< the path of the folder in which it stands (ShortcutFolder); "" at the top

  friend bool operator==(const Shortcut&, const Shortcut&) = default;
};

/// What a connection goes by: its label or, without one, its host.
[[nodiscard]] inline const std::string& NameOf(const Shortcut& shortcut) {
  return shortcut.label.empty() ? shortcut.site.host : shortcut.label;
}

}  // namespace corvane
