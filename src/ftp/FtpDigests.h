#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "util/Digest.h"

namespace corvane {

/// A way in which a server tells the checksum of a file. A value.
struct DigestWay {
  DigestKind kind = DigestKind::None;
  std::string verb{};  ///< "HASH", for which the kind is chosen first, or one made for the kind

  friend bool operator==(const DigestWay&, const DigestWay&) = default;
};

/// Takes the ways that a line of a FEAT reply lists (RFC 2389), in lower case: its first word and
/// the rest. The strongest kind comes first, and HASH before other verbs.
void TakeDigests(std::string_view verb, std::string_view rest, std::vector<DigestWay>& ways);

/// What a kind is called where HASH is told to use it.
[[nodiscard]] std::string_view HashName(DigestKind kind);

/// The command that asks for a file's checksum; nothing where the name cannot be said in it.
[[nodiscard]] std::optional<std::string> DigestCommand(const DigestWay& way,
                                                       const std::string& name);

/// The checksum in the text of a reply, as bytes; nothing where it tells none, or where it is not
/// plain which of several it is.
[[nodiscard]] std::optional<std::string> ReadDigest(const DigestWay& way, std::string_view text);

}  // namespace corvane
