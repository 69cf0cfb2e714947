#pragma once

#include <string>
#include <string_view>

namespace corvane {

/// What a mode as listings show it, "-rw-r--r--", says of permissions.
class Permissions {
 public:
  /// The mode without the letter for the entry's type; other texts as they are.
  [[nodiscard]] static std::string_view WithoutType(std::string_view mode);
  /// "644"; empty where the mode is none.
  [[nodiscard]] static std::string Octal(std::string_view mode);
};

}  // namespace corvane
