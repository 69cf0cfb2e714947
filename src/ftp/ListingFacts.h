#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "remote/RemoteEntry.h"

namespace corvane {

/// Reads a line of facts (RFC 3659, 7.2), "type=file;size=3; name", without its end: one of an MLSD
/// listing, or of an MLST reply without its first blank. False where it is not of that form. The
/// directory itself and the one above it are told as "." and "..", whatever the server calls them.
/// What is of no known type, or of none, is told as a link whose mode does not begin with "l".
[[nodiscard]] bool ReadFactsLine(std::string_view line, RemoteEntry& entry);

/// The time of an MDTM reply's or a fact's "20260314092600.25", in whole seconds; nothing where it
/// is none.
[[nodiscard]] std::optional<RemoteTime> ReadTimeVal(std::string_view text);
/// A moment, in seconds since 1970, in that form; nothing where its year has not four digits.
[[nodiscard]] std::optional<std::string> WriteTimeVal(std::int64_t seconds);

}  // namespace corvane
