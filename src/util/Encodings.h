#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "kit/Text.h"

namespace corvane {

/// True when the bytes are well-formed UTF-8 (no overlong forms, no surrogates, up to U+10FFFF).
[[nodiscard]] bool IsUtf8(std::string_view bytes);

/// An encoding of names that a user may choose for a server.
struct OfferedEncoding {
  Text people;            ///< whose it is
  const char* name = "";  ///< as iconv calls it
};
/// All of them, in the order in which they are offered.
[[nodiscard]] std::vector<OfferedEncoding> OfferedEncodings();

/// A server's bytes in UTF-8: as they are where that is what they are, else read in `encoding`, an
/// iconv name or empty, else as Latin-1. Any thread.
[[nodiscard]] std::string Decoded(std::string_view bytes, const std::string& encoding);
/// UTF-8 as the bytes of a server with that encoding; as it is without one, and where it is no
/// UTF-8. Nothing where the encoding lacks one of its characters. Any thread.
[[nodiscard]] std::optional<std::string> Encoded(std::string_view text,
                                                 const std::string& encoding);

/// A server's bytes as text for the screen, in UTF-8: see Decoded. Control characters, and
/// characters that turn the writing direction, become visible escapes such as \x0A or \u202E, so
/// that a name cannot pass for another. Never used to form a command.
[[nodiscard]] std::string DisplayText(std::string_view bytes, const std::string& encoding = {});

}  // namespace corvane
