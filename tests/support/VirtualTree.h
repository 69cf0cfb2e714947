#pragma once

#include <cstddef>
#include <filesystem>
#include <iterator>
#include <map>
#include <optional>
#include <string>

#include "kit/Mutex.h"

namespace corvane {

/// The files that the scripted server offers, in memory. Paths are absolute; any thread.
class VirtualTree {
  using Path = std::filesystem::path;

 public:
  /// The path of `path` as seen from `directory`.
  [[nodiscard]] static std::string Join(const std::string& directory, const std::string& path) {
    const std::string at = (Path(directory) / path).lexically_normal();
    return at.size() > 1 && at.ends_with('/') ? at.substr(0, at.size() - 1) : at;
  }

  /// Adding makes the directories above and replaces a file of that name.
  void AddDirectory(const std::string& path) { Add(path, {'d', ""}); }
  void AddFile(const std::string& path, const std::string& bytes) { Add(path, {'-', bytes}); }
  void AddLink(const std::string& path, const std::string& target) { Add(path, {'l', target}); }

  [[nodiscard]] bool Exists(const std::string& path) const { return Find(path).has_value(); }
  [[nodiscard]] std::optional<std::string> File(const std::string& path) const {
    const auto node = Find(path);
    return node && node->type == '-' ? std::optional(node->text) : std::nullopt;
  }
  /// The directory at `path`, or where a link there leads; nothing when there is none.
  [[nodiscard]] std::optional<std::string> Directory(const std::string& path) const {
    const auto node = Find(path);
    if (node && node->type == 'l') return Directory(node->text);
    return node && node->type == 'd' ? std::optional(path) : std::nullopt;
  }
  /// What `ls -la` says about a directory, lines ending in CR LF.
  [[nodiscard]] std::string Listing(const std::string& directory) const {
    const MutexLock hold(lock_);
    std::string lines = "total 8\r\n" + Line('d', 0, ".") + Line('d', 0, "..");
    for (const auto& [path, node] : nodes_) {
      if (path == "/" || Path(path).parent_path() != directory) continue;
      const std::string target = node.type == 'l' ? " -> " + node.text : "";
      lines += Line(node.type, node.text.size(), Path(path).filename().string() + target);
    }
    return lines;
  }
  /// What MLSD says about a directory, and about one entry of it under a name.
  [[nodiscard]] std::string Facts(const std::string& directory) const {
    std::string lines;
    for (const auto& [path, node] : Nodes()) {
      if (path != "/" && Path(path).parent_path() == directory)
        lines += Fact(path, Path(path).filename().string());
    }
    return lines;
  }
  [[nodiscard]] std::string Fact(const std::string& path, const std::string& name) const {
    const auto node = Find(path).value_or(Node{'-', ""});
    const std::string size =
        node.type == 'd' ? "" : "size=" + std::to_string(node.text.size()) + ";";
    return std::string("type=") + (node.type == 'd' ? "dir" : "file") + ";" + size +
           "modify=20260112123400; " + name + "\r\n";
  }
  /// Everything that is there, by path, with its kind ('-', 'd' or 'l') ahead of its text.
  [[nodiscard]] std::map<std::string, std::string> Everything() const {
    std::map<std::string, std::string> all;
    for (const auto& [path, node] : Nodes()) all[path] = node.type + node.text;
    return all;
  }
  /// Gives an entry, with what is in it, another path; false where there is none. A file that
  /// stands there is replaced.
  bool Move(const std::string& from, const std::string& to) EXCLUDES(lock_) {
    const MutexLock hold(lock_);
    std::map<std::string, Node> moved;
    for (auto at = nodes_.lower_bound(from); at != nodes_.end();) {
      const bool inside = at->first == from || at->first.starts_with(from + "/");
      if (inside) moved[to + at->first.substr(from.size())] = at->second;
      at = inside ? nodes_.erase(at) : std::next(at);
    }
    for (auto& [path, node] : moved) nodes_.insert_or_assign(path, node);
    return !moved.empty();
  }
  /// Removes an empty directory, or what is none; false where the other kind stands.
  bool Remove(const std::string& path, bool directory) {
    const auto node = Find(path);
    const MutexLock hold(lock_);
    const auto next = nodes_.upper_bound(path + "/");
    const bool empty = next == nodes_.end() || !next->first.starts_with(path + "/");
    return node && (node->type == 'd') == directory && empty && nodes_.erase(path) == 1;
  }

 private:
  struct Node {
    char type;         ///< '-', 'd' or 'l'
    std::string text;  ///< bytes of a file, target of a link
  };

  static std::string Line(char type, std::size_t size, const std::string& name) {
    const std::string start = "rwxr-xr-x 1 ftp ftp " + std::to_string(size);
    return type + start + " Jan 12 12:34 " + name + "\r\n";
  }
  [[nodiscard]] std::map<std::string, Node> Nodes() const EXCLUDES(lock_) {
    const MutexLock hold(lock_);
    return nodes_;
  }
  [[nodiscard]] std::optional<Node> Find(const std::string& path) const EXCLUDES(lock_) {
    const MutexLock hold(lock_);
    const auto found = nodes_.find(path);
    return found == nodes_.end() ? std::nullopt : std::optional(found->second);
  }
  void Add(const std::string& path, const Node& node) EXCLUDES(lock_) {
    const MutexLock hold(lock_);
    for (Path above = Path(path).parent_path(); above != "/"; above = above.parent_path())
      nodes_.try_emplace(above, Node{'d', ""});
    nodes_.insert_or_assign(path, node);
  }

  mutable Mutex lock_;
  std::map<std::string, Node> nodes_ GUARDED_BY(lock_) = {{"/", {'d', ""}}};
};

}  // namespace corvane
