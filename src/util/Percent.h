#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace corvane {

/// The bytes that a part of a URL stands for: "%XX" is one byte (RFC 3986, 2.1). Nothing for a
/// broken escape and for a NUL or a line end, escaped or not, which no name and no path can hold.
[[nodiscard]] std::optional<std::string> PercentDecoded(std::string_view text);

/// The bytes as a part of a URL: what is not unreserved and not in `also` becomes "%XX".
[[nodiscard]] std::string PercentEncoded(std::string_view bytes, std::string_view also);

}  // namespace corvane
