#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace corvane {

/// True when the bytes are well-formed UTF-8 (no overlong forms, no surrogates, up to U+10FFFF).
[[nodiscard]] bool IsUtf8(std::string_view bytes);

/// A server's bytes as text for the screen, in UTF-8: taken as UTF-8 where valid, else as Latin-1.
/// Control characters, and characters that turn the writing direction, become visible escapes such
/// as \x0A or \u202E, so that a name cannot pass for another. Never used to form a command.
[[nodiscard]] std::string DisplayText(std::string_view bytes);

}  // namespace corvane
