#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "queue/transferStruct.h"
#include "remote/RemoteEntry.h"

namespace corvane {

/// What a transfer would meet where it puts its entries, and what is to become of that. A value.
struct TransferPlan {
  /// What stands under the name already. Links are not followed.
  enum class There : std::uint8_t {
    Nothing,
    SameSize,
    Shorter,  ///< than the entry, or one of the sizes is not known
    Longer,
    Folder,
    Link,
    Other,  ///< a device, a pipe, or a file in the place of a directory
  };

  /// How the entry's time is to that of what is there.
  enum class Age : std::uint8_t { Unknown, Same, Newer, Older };

  /// What is known of an entry, or of what stands in its place.
  struct Facts {
    RemoteEntry::Kind kind = RemoteEntry::Kind::File;
    std::int64_t size = -1;  ///< bytes; -1 when not known
    std::optional<RemoteTime> modified{};
  };
  /// What stands in a directory, by name.
  using Names = std::unordered_map<std::string, Facts>;

  struct Entry {
    std::string name;   ///< where it comes from: on the server, or a local path; raw bytes
    std::string local;  ///< the name that it gets
    RemoteEntry::Kind kind = RemoteEntry::Kind::File;
    std::int64_t size = -1;  ///< bytes; -1 when not known
    std::optional<RemoteTime> modified{};
    There there = There::Nothing;
    std::int64_t sizeThere = -1;  ///< of the file that is there
    std::optional<RemoteTime> modifiedThere{};
    std::string freeName{};  ///< for both to be kept, where something is there
    Policy policy = Policy::CreateNew;
    bool leftOut = false;  ///< it is not transferred, and what is there stays

    /// Whether a folder goes into one that is there.
    [[nodiscard]] bool IsMerged() const;
    /// Whether another can take the place of what is there, or be merged with it.
    [[nodiscard]] bool IsReplaceable() const;
    /// Unknown also where a server's clock may be in any zone of the world.
    [[nodiscard]] Age AgeToThere() const;
    /// Chooses what becomes of it and of what is there. A folder passes the choice on to the files
    /// in it. What cannot be replaced stays, unless both are kept; only what is shorter is resumed,
    /// and only what is surely older, or of another size, makes way for what is newer.
    void Settle(Policy chosen);
  };

  std::string folder;  ///< the target
  int error = 0;       ///< why the target cannot be opened (errno); 0 when it can
  std::vector<Entry> entries;

  /// A download: looks at the disk, which may take as long as the disk likes. Of entries that would
  /// get the same name the first has it, the others get free ones. Any thread but the GUI thread.
  [[nodiscard]] static TransferPlan Look(std::string folder, std::vector<Entry> entries);
  /// The same of an upload to where `names` stand; looks at the local files, too.
  [[nodiscard]] static TransferPlan LookHere(std::string folder, std::vector<Entry> entries,
                                             const Names& names);

  /// How many entries meet something.
  [[nodiscard]] std::size_t CountExisting() const;
  /// The policy of every entry that meets something, whatever that is; Skip leaves it out.
  void SetForExisting(Policy policy);
  /// Settles every entry where nobody knows what it meets. A single file that would have to be
  /// compared with what is there is only made new.
  void SettleUnseen(Policy chosen);
  /// Settles every entry that meets something.
  void SettleExisting(Policy chosen);
};

}  // namespace corvane
