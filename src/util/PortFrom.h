#pragma once

#include <cstdint>
#include <string_view>

namespace corvane {

/// The port that a user wrote: the decimal number at the beginning, blanks around it ignored. 0,
/// with which nothing can be reached, where there is none from 1 to 65535.
[[nodiscard]] std::uint16_t PortFrom(std::string_view text);

}  // namespace corvane
