#pragma once

#include <string>
#include <vector>

#include "kit/Text.h"
#include "sites/ShortcutFolders.h"

namespace corvane {

/// The shortcuts as a text that ShortcutImport reads: a line that names the form, one for each
/// folder, one for each shortcut with its URL and what a URL has no place for, and "end".
/// Passwords stand there where `passwords` says so.
[[nodiscard]] std::string WrittenShortcuts(const std::vector<Shortcut>& shortcuts,
                                           const std::vector<ShortcutFolder>& folders,
                                           bool passwords);

/// Writes a file for this user alone (mode 0600), in place of a plain file of that path, which
/// stays until the new one is whole. Returns why it could not be. Blocks on the disk.
[[nodiscard]] Text WritePrivateFile(const std::string& path, const std::string& bytes);

}  // namespace corvane
