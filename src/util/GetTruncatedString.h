#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace corvane {

/// Where a text that is too wide loses characters.
enum class Truncation { Beginning, Middle, End };

/// The width in pixels of a UTF-8 text in some font; given by the toolkit.
using TextWidth = std::function<float(std::string_view)>;

/// `text` (UTF-8) shortened with an ellipsis character until it measures at most `width` pixels.
/// Whole characters are cut. A text that fits is returned as it is.
[[nodiscard]] std::string GetTruncatedString(std::string_view text, const TextWidth& measure,
                                             float width, Truncation mode);

/// `text` shortened at its end with trailing dots, blanks before the dots removed, until it
/// measures at most `width` pixels; near the start fewer than three dots remain, and at last the
/// first character alone. Cuts bytes; meant for short column titles.
[[nodiscard]] std::string GetTruncatedString(std::string_view text, const TextWidth& measure,
                                             float width);

}  // namespace corvane
