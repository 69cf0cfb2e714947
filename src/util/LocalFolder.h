#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "util/Beneath.h"
#include "util/UniqueFd.h"

namespace corvane {

/// An open folder of a download. What is below it is reached step by step from its descriptor, so
/// that nothing outside is reached, whoever changes the names meanwhile. Calls return 0 or an errno
/// number. One thread at a time.
class LocalFolder {
 public:
  /// Opens a path that the user chose; links are followed.
  [[nodiscard]] int Open(const std::string& path);
  /// Whether the folder that Open opened was removed, moved or unmounted since, so that its path
  /// leads nowhere, or elsewhere. Where the file system gives one folder several inode numbers, as
  /// network file systems may, another folder of the same one is not noticed.
  [[nodiscard]] bool IsGone() const;
  /// Opens the folder `name` inside `above` and makes it when it is missing. `name` must pass
  /// IsSafeLocalName (else EINVAL); a symbolic link or a file in its place is refused.
  [[nodiscard]] int Enter(const LocalFolder& above, std::string_view name);
  /// Writes everything on the folder's file system to the disk: one call for a whole tree whose
  /// files were committed with Durability::Later. Blocks as long as the disk needs.
  [[nodiscard]] int SyncAll() const;

  /// Gives the folder a time of its last change, in seconds since 1970; what is made in it later
  /// changes that.
  [[nodiscard]] int SetTime(std::int64_t seconds) const;

  /// A plain file that stands in the folder.
  struct Entry {
    std::int64_t size = 0;      ///< in bytes
    std::int64_t modified = 0;  ///< in seconds since 1970
  };
  /// What stands at `name`: a plain file, or something else (nothing in `file`). Links are not
  /// followed. ENOENT where there is nothing.
  [[nodiscard]] int Look(const std::string& name, std::optional<Entry>& file) const;

  [[nodiscard]] int Fd() const { return fd_.get(); }

 private:
  UniqueFd fd_;
  std::string path_;     // that was opened
  bool steady_ = false;  // its inode number is the same by path and by descriptor
};

}  // namespace corvane
