#pragma once

#include <string_view>

#include "sites/ShortcutImport.h"

namespace corvane {

/// The readers of ShortcutImport, one for each kind of file. Their texts are the file's own.

/// The XML of FileZilla's site manager.
[[nodiscard]] ShortcutImport ReadSiteManager(std::string_view xml);
/// A netrc file: words parted by white space, that of a password perhaps in quotes.
[[nodiscard]] ShortcutImport ReadNetrc(std::string_view text);
/// Bookmarks as lftp keeps them: in each line a name and a URL.
[[nodiscard]] ShortcutImport ReadBookmarks(std::string_view text);
/// What WrittenShortcuts has written.
[[nodiscard]] ShortcutImport ReadShortcutLines(std::string_view text);
/// Whether the text begins as one of those.
[[nodiscard]] bool AreShortcutLines(std::string_view text);

/// Says of an import that the file cannot be read.
[[nodiscard]] ShortcutImport Damaged(const Text& how);
[[nodiscard]] ShortcutImport TooMany();
/// Why what is reached over a protocol of that name, as URLs have it, cannot be taken.
[[nodiscard]] Text OtherProtocol(std::string_view scheme);

}  // namespace corvane
