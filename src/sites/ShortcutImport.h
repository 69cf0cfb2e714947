#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "kit/Text.h"
#include "sites/Shortcut.h"
#include "sites/ShortcutFolders.h"

namespace corvane {

/// A connection that stands in a file of this or of another program.
struct ImportedShortcut {
  Shortcut shortcut{};
  Text refusal{};             ///< why it cannot become a shortcut; empty where it can
  std::vector<Text> notes{};  ///< what of it becomes another thing or is left out
  bool known = false;         ///< there is one already that leads there as the same user
};

/// What a file of connections holds. A value.
struct ShortcutImport {
  static constexpr std::size_t kMostBytes = std::size_t{16} << 20U;
  static constexpr std::size_t kMostEntries = 10'000;

  Text source{};   ///< what kind of file it is
  Text failure{};  ///< why nothing of it can be read; empty where it can be
  std::vector<ImportedShortcut> entries{};
  std::vector<ShortcutFolder> folders{};  ///< those that the file names by themselves

  /// Reads the bytes of a file, whose kind they tell: a site manager's XML, a netrc file, a list of
  /// bookmarks, or what WrittenShortcuts has written. A file that is damaged anywhere gives a
  /// failure and no entries. Any thread.
  [[nodiscard]] static ShortcutImport Read(std::string_view bytes);
  /// Reads the file of that path. Blocks on the disk.
  [[nodiscard]] static ShortcutImport ReadFile(const std::string& path);

  /// Brings the entries into a form in which the store keeps them; `keyring` says that passwords
  /// do not stand in their lines.
  void FitToStore(bool keyring);
  /// Marks those that lead where one of `there`, or an earlier entry, leads.
  void MarkKnown(const std::vector<Shortcut>& there);
};

}  // namespace corvane
