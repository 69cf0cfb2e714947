#pragma once

#include <string>
#include <string_view>

namespace corvane {

/// The short size text for columns, from a byte count in decimal digits: cut, never rounded, 1,000
/// bytes to the kilobyte, padded so that the numbers line up; megabytes are the largest unit.
[[nodiscard]] std::string FileSizeString(std::string_view digits);

}  // namespace corvane
