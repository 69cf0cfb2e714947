#pragma once

#include <string>
#include <string_view>

#include "sites/Shortcut.h"

namespace corvane {

/// What the line of a saved connection has no place for, as a text that stands beside it: security,
/// encoding, certificate, its folder, and where the password is. It begins with the login that it
/// belongs to, so that it never gets to another one when something else has reordered the lines.
/// Empty where there is nothing to say.
[[nodiscard]] std::string ExtrasText(const Shortcut& shortcut);
/// Puts what such a text says into `shortcut`; nothing where it belongs to another login.
void TakeExtras(std::string_view text, Shortcut& shortcut);

}  // namespace corvane
