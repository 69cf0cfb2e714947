#include "util/Base64.h"

#include <cstdint>

namespace corvane {

std::optional<std::string> Base64Decoded(std::string_view text) {
  constexpr std::string_view kDigits =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string bytes;
  std::uint32_t bits = 0;
  int count = 0;  // of the bits that are in no byte yet
  bool padded = false;
  for (const char c : text) {
    if (c == ' ' || c == '\t' || c == '\r' || c == '\n') continue;
    const std::size_t digit = kDigits.find(c);
    if (c != '=' && (padded || digit == std::string_view::npos)) return {};
    padded = padded || c == '=';
    if (padded) continue;
    bits = (bits << 6U) | static_cast<std::uint32_t>(digit);
    count += 6;
    if (count < 8) continue;
    count -= 8;
    bytes += static_cast<char>((bits >> static_cast<unsigned>(count)) & 0xFFU);
  }
  if (count == 6) return {};
  return bytes;
}

}  // namespace corvane
