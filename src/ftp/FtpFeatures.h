#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "remote/RemoteEntry.h"

namespace corvane {

/// What a server says it can do beyond RFC 959 (FEAT, RFC 2389). A value.
struct FtpFeatures {
  bool facts = false;  ///< MLST (RFC 3659)
  bool copy = false;   ///< SITE CPFR and SITE CPTO
  bool room = false;   ///< AVBL
};

/// What the lines of a FEAT reply list.
[[nodiscard]] FtpFeatures ReadFeatures(std::string_view reply);

/// Reads the facts of an MLST reply (RFC 3659, 7.2) into `entry`; its name is left alone. False
/// where they do not tell of what kind it is.
[[nodiscard]] bool ReadFacts(std::string_view reply, RemoteEntry& entry);

/// The time of an MDTM reply's or a fact's "20260314092600"; nothing where it is none.
[[nodiscard]] std::optional<RemoteTime> ReadTimeVal(std::string_view text);

/// How many bytes may still be stored, of a SITE QUOTA reply with lines such as "Uploaded Mb:
/// 3.50/10.00"; nothing where no limit is told.
[[nodiscard]] std::optional<std::int64_t> ReadQuota(std::string_view reply);

}  // namespace corvane
