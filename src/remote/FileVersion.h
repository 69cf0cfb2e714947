#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "kit/Message.h"
#include "util/Digest.h"

namespace corvane {

/// Which state of a file stands on a server, as far as the server tells. A value.
struct FileVersion {
  bool there = true;                       ///< else nothing stands at its path
  std::int64_t size = -1;                  ///< bytes; -1 when not told
  std::optional<std::int64_t> modified{};  ///< seconds since 1970; nothing when not told
  DigestKind kind = DigestKind::None;      ///< of the checksum; None without one
  std::string digest{};                    ///< as bytes

  friend bool operator==(const FileVersion&, const FileVersion&) = default;
};

/// Whether both may be the same state: nothing that is told of both speaks against it. Equal
/// checksums decide, whatever the times say.
[[nodiscard]] bool MayBeSame(const FileVersion& one, const FileVersion& other);

/// Writes the version into a message, and reads it again.
void AddVersion(Message& message, const FileVersion& version);
[[nodiscard]] FileVersion VersionIn(const Message& message);

}  // namespace corvane
