#pragma once

#include <string>

namespace corvane {

/// Reads the stored settings into ProcessSettings, and brings what an older version stored, the
/// shortcuts included, up to date. Returns why the settings could not be read, "" when they were.
/// GUI thread.
[[nodiscard]] std::string ReadAtStart();

}  // namespace corvane
