#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "remote/RemoteEntry.h"
#include "workers/transferStruct.h"

namespace corvane {

/// What a transfer would meet where it puts its entries, and what is to become of that. A value.
struct TransferPlan {
  /// What stands under the name already. Links are not followed.
  enum class There : std::uint8_t {
    Nothing,
    SameSize,
    Shorter,  ///< than the entry, or the entry's size is not known
    Longer,
    Folder,
    Link,
    Other,  ///< a device, a pipe, or a file in the place of a directory
  };

  struct Entry {
    std::string name;   ///< where it comes from: on the server, or a local path; raw bytes
    std::string local;  ///< the name that it gets
    RemoteEntry::Kind kind = RemoteEntry::Kind::File;
    std::int64_t size = -1;  ///< bytes; -1 when not known
    There there = There::Nothing;
    Policy policy = Policy::CreateNew;
  };

  std::string folder;  ///< the target
  int error = 0;       ///< why the target cannot be opened (errno); 0 when it can
  std::vector<Entry> entries;

  /// Looks at the disk, which may take as long as the disk likes. Any thread but the GUI thread.
  [[nodiscard]] static TransferPlan Look(std::string folder, std::vector<Entry> entries);

  /// How many entries meet something.
  [[nodiscard]] std::size_t CountExisting() const;
  /// The policy of every entry that meets something.
  void SetForExisting(Policy policy);
};

}  // namespace corvane
