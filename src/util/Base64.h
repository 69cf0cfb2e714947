#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace corvane {

/// The bytes that a text stands for in base64 (RFC 4648, 4), white space left out of account; its
/// padding may be missing. Nothing where it holds any other character or is cut within a byte.
[[nodiscard]] std::optional<std::string> Base64Decoded(std::string_view text);

}  // namespace corvane
