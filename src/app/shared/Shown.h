#pragma once

#include <QString>

#include "kit/Text.h"

namespace corvane {

/// A text in the user's language, looked up by its sentences' identifiers. Names and the server's
/// words stay as they are, hostile characters made visible; line ends stay line ends. GUI thread.
[[nodiscard]] QString Shown(const Text& text);

/// The text in one line.
[[nodiscard]] QString ShownInLine(const Text& text);

}  // namespace corvane
