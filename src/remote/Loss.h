#pragma once

#include <chrono>
#include <optional>

#include "kit/Text.h"

namespace corvane {

/// How a connection was lost. A value.
struct Loss {
  Text why{};
  /// How long no command had been sent when the server closed the connection of its own accord.
  std::optional<std::chrono::seconds> idle{};
  /// A command that changes what the server holds had gone out, and no answer came: it may have
  /// been carried out.
  bool maybeChanged = false;
};

}  // namespace corvane
