#pragma once

#include <optional>
#include <span>
#include <string>

#include "kit/Message.h"

namespace corvane {

/// What the program was asked to do when it was started.
struct CommandLine {
  bool usage = false;           ///< the arguments were wrong: say how to use the program, and quit
  bool deskbar = false;         ///< put the icon into the tray, and nothing else
  bool login = false;           ///< the session is just beginning: the tray may come late
  std::optional<Message> open;  ///< 'OPNC' for a URL; nothing for a plain start

  /// Reads what is left after the toolkit's own options and without the program's name.
  [[nodiscard]] static CommandLine Read(std::span<const std::string> arguments);
};

}  // namespace corvane
