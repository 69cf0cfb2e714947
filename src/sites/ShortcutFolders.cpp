#include "sites/ShortcutFolders.h"

#include <algorithm>
#include <set>

#include "util/Percent.h"

namespace corvane {
namespace {

bool IsControl(char c) {
  return static_cast<unsigned char>(c) < 0x20 || c == 0x7F;
}

// Takes what stands before the next `mark`.
std::string_view TakeUntil(std::string_view& text, char mark) {
  const std::string_view part = text.substr(0, text.find(mark));
  text.remove_prefix(std::min(part.size() + 1, text.size()));
  return part;
}

}  // namespace

bool IsFolderName(std::string_view name) {
  return !name.empty() && name.find('/') == std::string_view::npos &&
         std::ranges::none_of(name, IsControl);
}

std::string FolderNameFrom(std::string_view text) {
  std::string name(text);
  std::ranges::replace_if(name, IsControl, ' ');
  std::ranges::replace(name, '/', '-');
  name.erase(0, std::min(name.find_first_not_of(' '), name.size()));
  name.erase(name.find_last_not_of(' ') + 1);
  return name;
}

std::string_view FolderName(std::string_view path) {
  return path.substr(path.rfind('/') + 1);
}

std::string_view FolderAround(std::string_view path) {
  const std::size_t slash = path.rfind('/');
  return slash == std::string_view::npos ? std::string_view() : path.substr(0, slash);
}

std::string FolderIn(std::string_view around, std::string_view name) {
  std::string path(around);
  if (!path.empty()) path += '/';
  return path.append(name);
}

bool IsWithin(std::string_view path, std::string_view folder) {
  if (folder.empty() || path == folder) return true;
  return path.starts_with(folder) && path[folder.size()] == '/';
}

std::string MovedPath(std::string_view path, std::string_view from, std::string_view to) {
  std::string_view rest = path.substr(from.size());
  if (to.empty() && rest.starts_with('/')) rest.remove_prefix(1);
  return CleanPath(std::string(to).append(rest));
}

std::string CleanPath(std::string_view path) {
  std::string clean;
  for (int depth = 0; !path.empty() && depth < kDeepestFolder;) {
    const std::string name = FolderNameFrom(TakeUntil(path, '/'));
    if (name.empty()) continue;
    clean = FolderIn(clean, name);
    ++depth;
  }
  return clean;
}

std::vector<ShortcutFolder> WholeFolders(const std::vector<ShortcutFolder>& folders,
                                         const std::vector<Shortcut>& shortcuts) {
  std::vector<ShortcutFolder> whole;
  std::set<std::string, std::less<>> known;
  const auto add = [&](const std::string& path, bool open) {
    for (std::size_t end = path.find('/'); !path.empty(); end = path.find('/', end + 1)) {
      const std::string part = path.substr(0, end);
      if (known.insert(part).second) whole.push_back({part, part != path || open});
      if (end == std::string::npos) break;
    }
  };
  for (const ShortcutFolder& folder : folders) add(folder.path, folder.open);
  for (const Shortcut& shortcut : shortcuts) add(shortcut.folder, true);
  // A folder that was named after one that it holds was taken for open.
  for (const ShortcutFolder& folder : folders) {
    if (!folder.open) std::ranges::find(whole, folder.path, &ShortcutFolder::path)->open = false;
  }
  return whole;
}

// A word for each: a sign that it is open or closed, and its path as in a URL.
std::string FoldersText(const std::vector<ShortcutFolder>& folders) {
  std::string text;
  for (const ShortcutFolder& folder : folders) {
    if (!text.empty()) text += ' ';
    text.append(folder.open ? "+" : "-").append(PercentEncoded(folder.path, "/"));
  }
  return text;
}

std::vector<ShortcutFolder> FoldersFrom(std::string_view text) {
  std::vector<ShortcutFolder> folders;
  while (!text.empty()) {
    const std::string_view word = TakeUntil(text, ' ');
    if (word.empty()) continue;
    const std::string path = CleanPath(PercentDecoded(word.substr(1)).value_or(""));
    if (!path.empty()) folders.push_back({path, word.front() != '-'});
  }
  return folders;
}

}  // namespace corvane
