#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "sites/Shortcut.h"

namespace corvane {

/// A folder of saved connections. Its path is the names from the outermost folder on, parted by
/// "/".
struct ShortcutFolder {
  std::string path{};
  bool open = true;  ///< what it holds is shown

  friend bool operator==(const ShortcutFolder&, const ShortcutFolder&) = default;
};

/// How deep folders may stand in each other; what is deeper counts as standing in the last one.
inline constexpr int kDeepestFolder = 32;

/// Whether a folder may be called so: some name without "/" and control characters.
[[nodiscard]] bool IsFolderName(std::string_view name);
/// The nearest name that a folder may have; "" where nothing is left.
[[nodiscard]] std::string FolderNameFrom(std::string_view text);

/// The last name of the path, and the path of the folder around it: "" at the top.
[[nodiscard]] std::string_view FolderName(std::string_view path);
[[nodiscard]] std::string_view FolderAround(std::string_view path);
[[nodiscard]] std::string FolderIn(std::string_view around, std::string_view name);
/// Whether `path` is `folder` or lies in it, at whatever depth; "" holds everything.
[[nodiscard]] bool IsWithin(std::string_view path, std::string_view folder);
/// `path`, which is `from` or lies in it, as it is once `from` has become `to`.
[[nodiscard]] std::string MovedPath(std::string_view path, std::string_view from,
                                    std::string_view to);
/// The path without empty names and without what is too deep.
[[nodiscard]] std::string CleanPath(std::string_view path);

/// `folders`, in their order, each behind those around it, with those that are missing for these
/// shortcuts.
[[nodiscard]] std::vector<ShortcutFolder> WholeFolders(const std::vector<ShortcutFolder>& folders,
                                                       const std::vector<Shortcut>& shortcuts);

/// The folders as one stored text, and back; what is no folder there is left out.
[[nodiscard]] std::string FoldersText(const std::vector<ShortcutFolder>& folders);
[[nodiscard]] std::vector<ShortcutFolder> FoldersFrom(std::string_view text);

}  // namespace corvane
