#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace corvane {

/// What a mode as listings show it, "-rw-r--r--", says of permissions. Bits are those of chmod: the
/// twelve lowest, 07777.
class Permissions {
 public:
  static constexpr unsigned kRights = 0777;    ///< read, write, execute for three
  static constexpr unsigned kSpecial = 07000;  ///< setuid, setgid, sticky
  static constexpr unsigned kExecute = 0111;

  /// The mode without the letter for the entry's type; other texts as they are.
  [[nodiscard]] static std::string_view WithoutType(std::string_view mode);
  /// "644"; empty where the mode is none.
  [[nodiscard]] static std::string Octal(std::string_view mode);
  /// The bits; nothing where the mode is none.
  [[nodiscard]] static std::optional<unsigned> Bits(std::string_view mode);
  /// Three digits, or four where a special bit is set.
  [[nodiscard]] static std::string Octal(unsigned bits);
  /// What three digits, or four, say; nothing where the text is none of these.
  [[nodiscard]] static std::optional<unsigned> FromOctal(std::string_view digits);
};

}  // namespace corvane
