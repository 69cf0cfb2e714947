#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "queue/TransferJob.h"
#include "remote/FileVersion.h"
#include "remote/Site.h"

namespace corvane {

/// The description of one transfer: what a row of the transfer window stands for. A value.
struct transferStruct {
  Site site{};
  bool download = true;
  std::string remoteDirectory{};  ///< the server directory that the row names
  std::string targetFolder{};     ///< the local folder that the row names
  std::int64_t size = 0;  ///< bytes of the last entry as listed, for the row until it begins
  std::int32_t bufferSize = 8192;  ///< bytes with which a transfer's buffer starts
  bool keepTimes = false;          ///< what is transferred keeps its time
  bool checks = true;              ///< compared by checksum where the server offers one
  bool usesPartNames = true;       ///< an upload takes the place of a file once it is whole
  std::int32_t connections = 4;    ///< at most so many at once
  /// Of an upload of one file: the only state of it on the server that may be replaced.
  std::optional<FileVersion> expected{};
  bool tracked =
      false;  ///< the row hears which state of its one file stands on the server ('VRSN')
  std::vector<TransferJob> jobs{};  ///< one for each entry that was chosen

  friend bool operator==(const transferStruct&, const transferStruct&) = default;
};

}  // namespace corvane
