#pragma once

#include <string>
#include <string_view>

namespace corvane {

/// The directory in which each application has one for its sets, read from the environment each
/// time; "" when the environment names none.
[[nodiscard]] std::string BaseDirectory(bool perUser);
/// BASE/_LP_APP
[[nodiscard]] std::string AppDirectory(const std::string& base, std::string_view app);
/// BASE/_LP_APP for a user's sets, BASE/_LP_APP/(libprefs common) for shared ones.
[[nodiscard]] std::string SetDirectory(const std::string& base, std::string_view app, bool perUser);

/// Whether `name` can be a set's: parts between "/" that lead nowhere else, the last of them not
/// like the names of the store's own temporary files.
[[nodiscard]] bool IsSetName(std::string_view name);
/// Whether a file of this name beside the sets is the store's own and not a set.
[[nodiscard]] bool IsTemporary(std::string_view fileName);
[[nodiscard]] bool IsDamaged(std::string_view fileName);

inline constexpr std::string_view kAppPrefix = "_LP_";
/// Before the six characters that mkostemp chooses.
inline constexpr std::string_view kTemporaryPrefix = ".saving-";
inline constexpr std::string_view kDamagedSuffix = ".damaged";

/// Makes the directories above `path`, which lies below `base`. 0, ENOENT where one cannot be made
/// or ENOTDIR where something else is in the way.
[[nodiscard]] int MakeDirectories(const std::string& base, const std::string& path, bool perUser);

}  // namespace corvane
