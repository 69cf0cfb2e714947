#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace corvane {

/// What the readers of a listing's lines have in common. Words are parted by blanks and tabs, and
/// views into the line.

[[nodiscard]] constexpr bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}
[[nodiscard]] constexpr bool IsBlank(char c) {
  return c == ' ' || c == '\t';
}
[[nodiscard]] constexpr char Lower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}
[[nodiscard]] constexpr bool AreDigits(std::string_view text) {
  return !text.empty() && std::ranges::all_of(text, IsDigit);
}
/// Whether `text` begins with `word`, which is in small letters.
[[nodiscard]] constexpr bool Begins(std::string_view text, std::string_view word) {
  return text.size() >= word.size() &&
         std::equal(word.begin(), word.end(), text.begin(),
                    [](char small, char c) { return small == Lower(c); });
}
[[nodiscard]] constexpr bool Is(std::string_view text, std::string_view word) {
  return text.size() == word.size() && Begins(text, word);
}

/// Takes the blanks from the front of `line`.
constexpr void SkipBlanks(std::string_view& line) {
  while (!line.empty() && IsBlank(line.front())) line.remove_prefix(1);
}
[[nodiscard]] constexpr std::string_view WithoutBlanks(std::string_view text) {
  SkipBlanks(text);
  while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
  return text;
}
/// Takes a word, and the blanks before it, from the front of `line`.
[[nodiscard]] constexpr std::string_view TakeWord(std::string_view& line) {
  SkipBlanks(line);
  std::size_t end = 0;
  while (end < line.size() && !IsBlank(line[end])) ++end;
  const std::string_view word = line.substr(0, end);
  line.remove_prefix(end);
  return word;
}

/// The first words of a line.
struct Words {
  std::array<std::string_view, 24> all{};
  std::size_t count = 0;

  [[nodiscard]] std::string_view operator[](std::size_t i) const {
    return i < count ? all[i] : std::string_view();
  }
};
[[nodiscard]] Words WordsOf(std::string_view line);
/// What stands in `line` behind `word`, a view into it.
[[nodiscard]] inline std::string_view Behind(std::string_view line, std::string_view word) {
  return line.substr(static_cast<std::size_t>(word.data() - line.data()) + word.size());
}

/// A whole number of at most nine digits; -1 for anything else.
[[nodiscard]] constexpr int NumberOf(std::string_view digits) {
  if (digits.empty() || digits.size() > 9) return -1;
  int value = 0;
  for (const char c : digits) {
    if (!IsDigit(c)) return -1;
    value = value * 10 + (c - '0');
  }
  return value;
}
/// A size in bytes, which may be written in groups of three digits.
[[nodiscard]] std::optional<std::int64_t> SizeOf(std::string_view text);
/// Whether that is a size, be it an exact one or one like "1.2K".
[[nodiscard]] bool IsSize(std::string_view text);

}  // namespace corvane
