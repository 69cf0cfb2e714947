#pragma once

#include <string>

namespace corvane {

/// One saved connection. All texts are the user's own; the port stays text until it is used.
struct Shortcut {
  std::string label{};
  std::string host{};
  std::string user{};
  std::string pass{};
  std::string path{};
  std::string port{};
  bool passive = false;

  friend bool operator==(const Shortcut&, const Shortcut&) = default;
};

/// What a connection goes by: its label or, without one, its host.
[[nodiscard]] inline const std::string& NameOf(const Shortcut& shortcut) {
  return shortcut.label.empty() ? shortcut.host : shortcut.label;
}

}  // namespace corvane
