#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "remote/RemoteEntry.h"

namespace corvane {

/// What becomes of an entry that is there already where a transfer would put one. Folders are gone
/// into, and what is in them follows the same policy.
enum class Policy : std::uint8_t {
  CreateNew = 0,  ///< it is kept, and the entry fails
  Replace = 1,    ///< it is replaced once the new one is whole
  Resume = 2,     ///< it is gone on with where it is a beginning of the same file, else replaced
  Skip = 3,       ///< it is kept, and the entry counts as done
  Newer = 4,      ///< replaced where the source is newer or of another size, else kept
  KeepBoth = 5,   ///< it is kept, and the new one gets a free name, such as "table (2).csv"
};

/// One file or folder on its way. A value; paths and names are raw bytes.
struct TransferJob {
  std::string remote{};                              ///< its path on the server
  std::string local{};                               ///< its path on this machine
  RemoteEntry::Kind kind = RemoteEntry::Kind::File;  ///< of a download; an upload looks for itself
  std::int64_t size = -1;                            ///< bytes as listed; -1 when not known
  Policy policy = Policy::CreateNew;
  std::optional<std::int64_t> modified{};  ///< when it was changed as listed, in seconds since 1970
  bool begun = false;  ///< an earlier try has left a beginning of it at its place
  bool there = false;  ///< of an upload: something stands at its place on the server

  friend bool operator==(const TransferJob&, const TransferJob&) = default;
};

}  // namespace corvane
