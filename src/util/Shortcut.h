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

}  // namespace corvane
