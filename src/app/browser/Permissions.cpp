#include "app/browser/Permissions.h"

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

std::string Permissions::Octal(std::string_view mode) {
  if (!IsMode(mode)) return {};
  std::string digits;
  int special = 0;
  for (int triple = 0; triple < 3; ++triple) {
    const std::string_view part = mode.substr(1 + static_cast<std::size_t>(triple) * 3, 3);
    const char last = part[2];
    const bool executes = last == 'x' || last == 's' || last == 't';
    if (last != 'x' && last != '-') special += 4 >> triple;
    digits += static_cast<char>('0' + (part[0] == 'r' ? 4 : 0) + (part[1] == 'w' ? 2 : 0) +
                                (executes ? 1 : 0));
  }
  return special == 0 ? digits : std::to_string(special) + digits;
}

}  // namespace corvane
