#include "workers/NamePattern.h"

#include <clocale>
#include <cstdint>
#include <cwctype>

namespace corvane {
namespace {

constexpr char32_t kByte = 0x110000;  // where bytes stand that are no characters

// The length of the character at the beginning, or 0 where there is none; `character` becomes it.
std::size_t Take(std::string_view text, char32_t& character) {
  const auto lead = static_cast<unsigned char>(text[0]);
  character = lead;
  if (lead < 0x80) return 1;
  const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : lead >= 0xC2 ? 2 : 0;
  if (length == 0 || length > text.size()) return 0;
  character = lead & (0x7FU >> length);
  for (std::size_t i = 1; i < length; ++i) {
    const auto next = static_cast<unsigned char>(text[i]);
    if ((next & 0xC0U) != 0x80U) return 0;
    character = character << 6U | (next & 0x3FU);
  }
  return character < kByte ? length : 0;
}

// Whatever locale the program runs in.
char32_t Lowered(char32_t character) {
  static const locale_t locale = ::newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
  if (character >= kByte || locale == nullptr) return character;
  return static_cast<char32_t>(::towlower_l(static_cast<wint_t>(character), locale));
}

bool FitsWhole(std::u32string_view name, std::u32string_view pattern) {
  std::size_t at = 0;
  std::size_t p = 0;
  std::size_t star = std::u32string_view::npos;
  std::size_t tried = 0;
  while (at < name.size()) {
    if (p < pattern.size() && pattern[p] == U'*') {
      star = p++;
      tried = at;
    } else if (p < pattern.size() && (pattern[p] == U'?' || pattern[p] == name[at])) {
      ++p;
      ++at;
    } else if (star != std::u32string_view::npos) {
      p = star + 1;
      at = ++tried;
    } else {
      return false;
    }
  }
  return pattern.find_first_not_of(U'*', p) == std::u32string_view::npos;
}

}  // namespace

NamePattern::NamePattern(std::string_view typed, bool matchesCase)
    : matchesCase_(matchesCase),
      whole_(typed.find_first_of("*?") != std::string_view::npos),
      pattern_(Characters(typed)) {}

std::u32string NamePattern::Characters(std::string_view text) const {
  std::u32string characters;
  characters.reserve(text.size());
  while (!text.empty()) {
    char32_t character = 0;
    std::size_t length = Take(text, character);
    if (length == 0) {
      character = kByte + static_cast<unsigned char>(text[0]);
      length = 1;
    }
    characters += matchesCase_ ? character : Lowered(character);
    text.remove_prefix(length);
  }
  return characters;
}

bool NamePattern::Fits(std::string_view name) const {
  if (pattern_.empty()) return true;
  const std::u32string characters = Characters(name);
  if (whole_) return FitsWhole(characters, pattern_);
  return characters.find(pattern_) != std::u32string::npos;
}

}  // namespace corvane
