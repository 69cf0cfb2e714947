#pragma once

#include <map>
#include <optional>
#include <string>

#include "kit/Mutex.h"

namespace corvane {

/// The files that the scripted server offers, in memory. Paths are absolute; any thread.
class VirtualTree {
 public:
  /// The path of `path` as seen from `directory`.
  [[nodiscard]] static std::string Join(const std::string& directory, const std::string& path);

  /// Adding makes the directories above and replaces a file of that name.
  void AddDirectory(const std::string& path) { Add(path, {'d', ""}); }
  void AddFile(const std::string& path, const std::string& bytes) { Add(path, {'-', bytes}); }
  void AddLink(const std::string& path, const std::string& target) { Add(path, {'l', target}); }

  [[nodiscard]] bool Exists(const std::string& path) const { return Find(path).has_value(); }
  [[nodiscard]] std::optional<std::string> File(const std::string& path) const;
  /// The directory at `path`, or where a link there leads; nothing when there is none.
  [[nodiscard]] std::optional<std::string> Directory(const std::string& path) const;
  /// What `ls -la` says about a directory, lines ending in CR LF.
  [[nodiscard]] std::string Listing(const std::string& directory) const;
  /// Removes an empty directory, or what is none; false where the other kind stands.
  bool Remove(const std::string& path, bool directory);

 private:
  struct Node {
    char type;         ///< '-', 'd' or 'l'
    std::string text;  ///< bytes of a file, target of a link
  };

  [[nodiscard]] std::optional<Node> Find(const std::string& path) const EXCLUDES(lock_);
  void Add(const std::string& path, const Node& node) EXCLUDES(lock_);

  mutable Mutex lock_;
  std::map<std::string, Node> nodes_ GUARDED_BY(lock_) = {{"/", {'d', ""}}};
};

}  // namespace corvane
