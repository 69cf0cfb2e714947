#pragma once

#include <string>
#include <string_view>
#include <utility>

namespace corvane {

/// `name` inside `directory`; "" stands for where the connection began.
[[nodiscard]] std::string PathBelow(const std::string& directory, std::string_view name);

/// What `name` means to a user who sees `directory`: an absolute path as it is, else one inside.
[[nodiscard]] std::string PathFrom(const std::string& directory, const std::string& name);

/// The path without slashes at its end; "/" stays.
[[nodiscard]] std::string WithoutTrailingSlash(std::string path);

/// Whether `directory` is `path`, or inside it at any depth.
[[nodiscard]] bool IsAtOrAbove(const std::string& path, const std::string& directory);

/// The directory of a path, and its last component. The directory of "name" is "".
[[nodiscard]] std::pair<std::string, std::string> SplitPath(const std::string& path);

}  // namespace corvane
