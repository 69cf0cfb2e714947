#pragma once

#include <optional>

#include "kit/Message.h"
#include "util/Shortcut.h"

namespace corvane {

/// The 'OPNC' that opens a browser window on a saved connection: "host", "user", "pass", "path",
/// "port" and "passive", the texts as they are. Nothing when its port is none; digits end it, and
/// no digits are the port 0.
[[nodiscard]] std::optional<Message> OpenMessage(const Shortcut& shortcut);

}  // namespace corvane
