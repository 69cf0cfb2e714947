#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "ftp/FtpDigests.h"

namespace corvane {

/// What a server says it can do beyond RFC 959 (FEAT, RFC 2389). A value; as it is made, what is
/// tried with a server that has no such list.
struct FtpFeatures {
  bool facts = false;                ///< MLST and MLSD (RFC 3659)
  bool modifiedTime = true;          ///< MDTM
  bool dateByMdtm = false;           ///< MDTM is listed, so that it may take a date too
  bool setTime = false;              ///< MFMT
  bool siteTime = false;             ///< SITE UTIME
  bool utf8 = false;                 ///< UTF8 (RFC 2640)
  bool hosts = false;                ///< HOST (RFC 7151)
  bool copy = false;                 ///< SITE CPFR and SITE CPTO
  bool room = false;                 ///< AVBL
  std::vector<DigestWay> digests{};  ///< checksums of files, the strongest first
  std::string neededFacts{};  ///< to be asked for by OPTS MLST; empty where they are told unasked
};

/// What the lines of a FEAT reply list.
[[nodiscard]] FtpFeatures ReadFeatures(std::string_view reply);

/// The command that asks when a file was changed; nothing where the server has none.
[[nodiscard]] std::optional<std::string> AskTimeCommand(const FtpFeatures& features,
                                                        const std::string& name);
/// The command that sets a file's time, in seconds since 1970: the way that is most plainly meant
/// for it, of those that are left. Nothing where there is none.
[[nodiscard]] std::optional<std::string> TimeCommand(const FtpFeatures& features,
                                                     const std::string& name, std::int64_t seconds);
/// The server turned out not to know that command.
void DropTimeCommand(FtpFeatures& features);

/// Whether a reply's code says that the server does not know the command, or not in this form.
[[nodiscard]] bool IsUnknownCommand(int code);

/// How many bytes may still be stored, of a SITE QUOTA reply with lines such as "Uploaded Mb:
/// 3.50/10.00"; nothing where no limit is told.
[[nodiscard]] std::optional<std::int64_t> ReadQuota(std::string_view reply);

}  // namespace corvane
