#pragma once

#include <string>
#include <string_view>

namespace corvane {

/// What the user types to find names: with "*" (anything) and "?" (one character) the whole name
/// must fit, other texts must stand somewhere in it. An empty one fits every name. A value.
class NamePattern {
 public:
  NamePattern() = default;
  /// UTF-8.
  explicit NamePattern(std::string_view typed, bool matchesCase = false);

  /// `name` as UTF-8; bytes that are none count as characters of their own.
  [[nodiscard]] bool Fits(std::string_view name) const;

 private:
  [[nodiscard]] std::u32string Characters(std::string_view text) const;

  bool matchesCase_ = false;
  bool whole_ = false;
  std::u32string pattern_;
};

}  // namespace corvane
