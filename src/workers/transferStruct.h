#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "remote/RemoteEntry.h"
#include "remote/Site.h"

namespace corvane {

/// What becomes of an entry that is there already where a transfer would put one. Folders are gone
/// into, and what is in them follows the same policy.
enum class Policy : std::uint8_t {
  CreateNew,  ///< it is kept, and the entry fails
  Replace,    ///< it is replaced once the new one is whole
  Resume,     ///< it is gone on with where it is a beginning of the same file, else replaced
  Skip,       ///< it is kept, and the entry counts as done
};

/// One file or folder on its way. A value; paths and names are raw bytes.
struct TransferJob {
  std::string remote{};                              ///< its path on the server
  std::string local{};                               ///< its path on this machine
  RemoteEntry::Kind kind = RemoteEntry::Kind::File;  ///< of a download; an upload looks for itself
  std::int64_t size = -1;                            ///< bytes as listed; -1 when not known
  Policy policy = Policy::CreateNew;
  std::optional<std::int64_t> modified{};  ///< when it was changed as listed, in seconds since 1970
};

/// The description of one transfer: what a row of the transfer window stands for. A value.
struct transferStruct {
  Site site{};
  bool download = true;
  std::string remoteDirectory{};  ///< the server directory that the row names
  std::string targetFolder{};     ///< the local folder that the row names
  std::int64_t size = 0;  ///< bytes of the last entry as listed, for the row until it begins
  std::int32_t bufferSize = 8192;   ///< bytes with which a transfer's buffer starts
  bool keepTimes = false;           ///< what is transferred keeps its time
  std::vector<TransferJob> jobs{};  ///< one for each entry that was chosen
};

}  // namespace corvane
