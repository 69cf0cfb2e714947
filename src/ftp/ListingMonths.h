#pragma once

#include <string_view>

namespace corvane {

/// The number of a month, from 1 on, by its short or long name in a language that servers speak, in
/// UTF-8 or the language's older encodings; 0 for every other word. A full stop or comma behind it
/// does not count, nor does the case of ASCII letters.
[[nodiscard]] unsigned MonthOf(std::string_view word);

}  // namespace corvane
