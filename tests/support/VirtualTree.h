#pragma once

#include <map>
#include <optional>
#include <string>

#include "kit/Mutex.h"

namespace corvane {

/// The files that the scripted server offers, in memory. Paths are absolute; any thread.
class VirtualTree {
 public:
  /// Adding makes the directories above and replaces a file of that name.
  void AddDirectory(const std::string& path);
  void AddFile(const std::string& path, std::string bytes);
  void AddLink(const std::string& path, const std::string& target);

  [[nodiscard]] std::optional<std::string> File(const std::string& path) const;
  [[nodiscard]] bool IsDirectory(const std::string& path) const;
  [[nodiscard]] bool Exists(const std::string& path) const;

  /// The absolute path of `path` as seen from `directory`; links on the way lead where they point,
  /// the last part only if `followLast`.
  [[nodiscard]] std::string Resolve(const std::string& directory, const std::string& path,
                                    bool followLast = true) const;
  /// Removes a file or link, or an empty directory.
  bool RemoveFile(const std::string& path);
  bool RemoveDirectory(const std::string& path);
  bool Rename(const std::string& from, const std::string& to);
  /// What `ls -la` says about a directory, lines ending in CR LF.
  [[nodiscard]] std::string Listing(const std::string& directory) const;

 private:
  struct Node {
    char type;         ///< '-', 'd' or 'l'
    std::string text;  ///< bytes of a file, target of a link
  };

  [[nodiscard]] char TypeOf(const std::string& path) const REQUIRES(lock_);
  void Add(const std::string& path, Node node) EXCLUDES(lock_);

  mutable Mutex lock_;
  std::map<std::string, Node> nodes_ GUARDED_BY(lock_) = {{"/", {'d', ""}}};
};

}  // namespace corvane
