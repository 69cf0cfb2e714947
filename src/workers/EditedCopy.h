#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace corvane {

/// What is done on the disk with the copies of edited files. Each has a number and folders of its
/// own, for this user alone, below one folder. All calls block on the disk; errors are errno
/// numbers, 0 for none.
class EditedCopy {
 public:
  enum class Place {
    Here,    ///< where programs open and save the copy
    Sent,    ///< the state of it that is being sent
    Server,  ///< what was fetched from the server
  };
  [[nodiscard]] static std::string FolderOf(const std::string& root, std::int64_t id, Place place);

  /// A name like `name` that a file can have here.
  [[nodiscard]] static std::string SafeName(const std::string& name);

  /// Makes the folder, and those above it, where they are missing.
  [[nodiscard]] static int MakeFolder(const std::string& folder);
  /// Removes all that stands in the folders of that number. Links are not followed.
  static void Remove(const std::string& root, std::int64_t id);
  /// Removes the folders of numbers that `keeps` does not hold, such as a crash may leave.
  template <typename Keeps>
  static void RemoveOthers(const std::string& root, const Keeps& keeps) {
    for (const std::int64_t id : Numbers(root))
      if (!keeps(id)) Remove(root, id);
  }

  /// Whether the folder of a copy holds something besides the copy, such as programs leave there
  /// that have it open. A backup counts only where the copy is missing.
  [[nodiscard]] static bool HoldsMore(const std::string& folder, const std::string& name);
  /// The numbers that have folders below `root`.
  [[nodiscard]] static std::vector<std::int64_t> Numbers(const std::string& root);

  struct Look {
    int error = 0;  ///< EAGAIN where the file was changed meanwhile
    std::int64_t size = 0;
    std::int64_t modified = 0;  ///< in seconds since 1970
    std::string digest{};       ///< SHA-256, as bytes
  };
  /// What a file holds.
  [[nodiscard]] static Look LookAt(const std::string& path);
  /// Copies a file into a new one, whose folder is there; what stands there makes way.
  [[nodiscard]] static Look Take(const std::string& path, const std::string& to);
  /// Gives a file another place on the same disk; what stands there makes way.
  [[nodiscard]] static int Move(const std::string& from, const std::string& to);
};

}  // namespace corvane
