#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace corvane {

/// The absolute path, as raw bytes, that a "file:" URL (RFC 8089) names on this machine. Nothing
/// for any other URL: another scheme or host, a relative path, a query or fragment, a broken
/// escape, or a NUL or line end, escaped or not.
[[nodiscard]] std::optional<std::string> LocalPathOf(std::string_view url);

/// The folder in which the absolute path `path` lies.
[[nodiscard]] std::string FolderOf(std::string_view path);

}  // namespace corvane
