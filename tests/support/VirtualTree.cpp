#include "support/VirtualTree.h"

#include <cstddef>
#include <filesystem>

namespace corvane {

namespace {

namespace fs = std::filesystem;

std::string Line(char type, std::size_t size, const std::string& name) {
  return type + ("rwxr-xr-x 1 ftp ftp " + std::to_string(size)) + " Jan 12 12:34 " + name + "\r\n";
}

}  // namespace

std::string VirtualTree::Join(const std::string& directory, const std::string& path) {
  const std::string at = (fs::path(directory) / path).lexically_normal();
  return at.size() > 1 && at.ends_with('/') ? at.substr(0, at.size() - 1) : at;
}

void VirtualTree::Add(const std::string& path, const Node& node) {
  const MutexLock hold(lock_);
  for (fs::path above = fs::path(path).parent_path(); above != "/"; above = above.parent_path()) {
    nodes_.try_emplace(above, Node{'d', ""});
  }
  nodes_.insert_or_assign(path, node);
}

std::optional<VirtualTree::Node> VirtualTree::Find(const std::string& path) const {
  const MutexLock hold(lock_);
  const auto found = nodes_.find(path);
  return found == nodes_.end() ? std::nullopt : std::optional(found->second);
}

std::optional<std::string> VirtualTree::File(const std::string& path) const {
  const auto node = Find(path);
  return node && node->type == '-' ? std::optional(node->text) : std::nullopt;
}

std::optional<std::string> VirtualTree::Directory(const std::string& path) const {
  const auto node = Find(path);
  if (node && node->type == 'l') return Directory(node->text);
  return node && node->type == 'd' ? std::optional(path) : std::nullopt;
}

std::string VirtualTree::Listing(const std::string& directory) const {
  const MutexLock hold(lock_);
  std::string lines = "total 8\r\n" + Line('d', 0, ".") + Line('d', 0, "..");
  for (const auto& [path, node] : nodes_) {
    if (path == "/" || fs::path(path).parent_path() != directory) continue;
    const std::string name = fs::path(path).filename();
    lines += Line(node.type, node.text.size(), node.type == 'l' ? name + " -> " + node.text : name);
  }
  return lines;
}

bool VirtualTree::Remove(const std::string& path, bool directory) {
  const auto node = Find(path);
  const MutexLock hold(lock_);
  const auto next = nodes_.upper_bound(path + "/");
  const bool empty = next == nodes_.end() || !next->first.starts_with(path + "/");
  return node && (node->type == 'd') == directory && empty && nodes_.erase(path) == 1;
}

}  // namespace corvane
