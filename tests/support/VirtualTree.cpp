#include "support/VirtualTree.h"

#include <cstddef>
#include <cstdio>
#include <sstream>
#include <utility>

namespace corvane {

namespace {

std::string Parent(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  return slash == 0 ? "/" : path.substr(0, slash);
}

std::string Below(const std::string& directory) {
  return directory == "/" ? directory : directory + "/";
}

std::string Line(char type, std::size_t size, const std::string& name) {
  char head[80];
  std::snprintf(head, sizeof head, "%crw%cr-%cr-%c %3d ftp      ftp      %12zu Jan 12 12:34 ", type,
                type == '-' ? '-' : 'x', type == '-' ? '-' : 'x', type == '-' ? '-' : 'x',
                type == 'd' ? 2 : 1, size);
  return head + name + "\r\n";
}

}  // namespace

void VirtualTree::Add(const std::string& path, Node node) {
  const MutexLock hold(lock_);
  for (std::string above = Parent(path); above != "/"; above = Parent(above)) {
    nodes_.try_emplace(above, Node{'d', ""});
  }
  nodes_.insert_or_assign(path, std::move(node));
}

void VirtualTree::AddDirectory(const std::string& path) {
  Add(path, {'d', ""});
}

void VirtualTree::AddFile(const std::string& path, std::string bytes) {
  Add(path, {'-', std::move(bytes)});
}

void VirtualTree::AddLink(const std::string& path, const std::string& target) {
  Add(path, {'l', target});
}

char VirtualTree::TypeOf(const std::string& path) const {
  const auto found = nodes_.find(path);
  return found == nodes_.end() ? '\0' : found->second.type;
}

std::optional<std::string> VirtualTree::File(const std::string& path) const {
  const MutexLock hold(lock_);
  if (TypeOf(path) != '-') return std::nullopt;
  return nodes_.at(path).text;
}

bool VirtualTree::IsDirectory(const std::string& path) const {
  const MutexLock hold(lock_);
  return TypeOf(path) == 'd';
}

bool VirtualTree::Exists(const std::string& path) const {
  const MutexLock hold(lock_);
  return TypeOf(path) != '\0';
}

std::string VirtualTree::Resolve(const std::string& directory, const std::string& path,
                                 bool followLast) const {
  const MutexLock hold(lock_);
  std::string at = path.starts_with('/') ? "/" : directory;
  std::istringstream parts(path);
  for (std::string part; std::getline(parts, part, '/');) {
    if (part.empty() || part == ".") continue;
    at = part == ".." ? Parent(at) : Below(at) + part;
    if (TypeOf(at) == 'l' && (followLast || !parts.eof())) at = nodes_.at(at).text;
  }
  return at;
}

bool VirtualTree::RemoveFile(const std::string& path) {
  const MutexLock hold(lock_);
  const char type = TypeOf(path);
  return (type == '-' || type == 'l') && nodes_.erase(path) == 1;
}

bool VirtualTree::RemoveDirectory(const std::string& path) {
  const MutexLock hold(lock_);
  if (TypeOf(path) != 'd' || path == "/") return false;
  const auto next = nodes_.lower_bound(path + "/");
  if (next != nodes_.end() && next->first.starts_with(path + "/")) return false;
  return nodes_.erase(path) == 1;
}

bool VirtualTree::Rename(const std::string& from, const std::string& to) {
  const MutexLock hold(lock_);
  if (TypeOf(from) == '\0' || from == "/" || TypeOf(Parent(to)) != 'd') return false;
  std::map<std::string, Node> moved;
  for (auto at = nodes_.begin(); at != nodes_.end();) {
    const bool below = at->first == from || at->first.starts_with(from + "/");
    if (below) moved[to + at->first.substr(from.size())] = at->second;
    at = below ? nodes_.erase(at) : std::next(at);
  }
  for (auto& [path, node] : moved) nodes_.insert_or_assign(path, std::move(node));
  return true;
}

std::string VirtualTree::Listing(const std::string& directory) const {
  const MutexLock hold(lock_);
  std::string lines = "total 8\r\n" + Line('d', 4096, ".") + Line('d', 4096, "..");
  const std::string prefix = Below(directory);
  for (auto at = nodes_.upper_bound(prefix); at != nodes_.end() && at->first.starts_with(prefix);
       ++at) {
    const std::string name = at->first.substr(prefix.size());
    if (name.find('/') != std::string::npos) continue;
    const auto& [type, text] = at->second;
    lines +=
        Line(type, type == 'd' ? 4096 : text.size(), type == 'l' ? name + " -> " + text : name);
  }
  return lines;
}

}  // namespace corvane
