#include "remote/Permissions.h"

#include <algorithm>

namespace corvane {
namespace {

constexpr std::string_view kLetters = "rwxrwxrwx";

// A letter of its own stands for an execute bit with another bit, or, when large, without it.
bool Fits(char letter, std::size_t place) {
  if (letter == '-' || letter == kLetters[place]) return true;
  return kLetters[place] == 'x' && std::string_view("sStT").find(letter) != std::string_view::npos;
}

bool IsMode(std::string_view mode) {
  if (mode.size() <= kLetters.size()) return false;
  for (std::size_t i = 0; i < kLetters.size(); ++i) {
    if (!Fits(mode[i + 1], i)) return false;
  }
  return true;
}

}  // namespace

std::string_view Permissions::WithoutType(std::string_view mode) {
  return IsMode(mode) ? mode.substr(1, kLetters.size()) : mode;
}

std::optional<unsigned> Permissions::Bits(std::string_view mode) {
  if (!IsMode(mode)) return std::nullopt;
  unsigned rights = 0;
  unsigned special = 0;
  for (std::size_t i = 0; i < kLetters.size(); ++i) {
    const char letter = mode[i + 1];
    const bool set = letter == kLetters[i] || letter == 's' || letter == 't';
    rights = rights << 1U | (set ? 1U : 0U);
    if (letter != kLetters[i] && letter != '-') special |= 04000U >> (i / 3);
  }
  return special | rights;
}

std::string Permissions::Octal(unsigned bits) {
  std::string digits;
  for (unsigned shift = (bits & kSpecial) != 0 ? 12 : 9; shift > 0; shift -= 3)
    digits += static_cast<char>('0' + (bits >> (shift - 3) & 7U));
  return digits;
}

std::string Permissions::Octal(std::string_view mode) {
  const std::optional<unsigned> bits = Bits(mode);
  return bits ? Octal(*bits) : std::string();
}

std::optional<unsigned> Permissions::FromOctal(std::string_view digits) {
  const bool octal = std::ranges::all_of(digits, [](char c) { return c >= '0' && c <= '7'; });
  if (!octal || digits.size() < 3 || digits.size() > 4) return std::nullopt;
  unsigned bits = 0;
  for (const char digit : digits) bits = bits << 3U | static_cast<unsigned>(digit - '0');
  return bits;
}

}  // namespace corvane
