#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace corvane {

/// What a server says it can do beyond RFC 959 (FEAT, RFC 2389). A value; as it is made, what is
/// tried with a server that has no such list.
struct FtpFeatures {
  bool facts = false;         ///< MLST and MLSD (RFC 3659)
  bool modifiedTime = true;   ///< MDTM
  bool dateByMdtm = false;    ///< MDTM is listed, so that it may take a date too
  bool setTime = false;       ///< MFMT
  bool siteTime = false;      ///< SITE UTIME
  bool utf8 = false;          ///< UTF8 (RFC 2640)
  bool hosts = false;         ///< HOST (RFC 7151)
  bool copy = false;          ///< SITE CPFR and SITE CPTO
  bool room = false;          ///< AVBL
  std::string neededFacts{};  ///< to be asked for by OPTS MLST; empty where they are told unasked
};

/// What the lines of a FEAT reply list.
[[nodiscard]] FtpFeatures ReadFeatures(std::string_view reply);

/// How many bytes may still be stored, of a SITE QUOTA reply with lines such as "Uploaded Mb:
/// 3.50/10.00"; nothing where no limit is told.
[[nodiscard]] std::optional<std::int64_t> ReadQuota(std::string_view reply);

}  // namespace corvane
