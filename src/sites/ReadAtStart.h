#pragma once

#include "kit/Text.h"

namespace corvane {

/// Reads the stored settings into ProcessSettings, and brings what an older version stored, the
/// shortcuts included, up to date. Returns why the settings could not be read, an empty text when
/// they were. GUI thread.
[[nodiscard]] Text ReadAtStart();

}  // namespace corvane
