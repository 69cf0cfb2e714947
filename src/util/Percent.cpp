#include "util/Percent.h"

#include <charconv>

namespace corvane {
namespace {

// The byte behind a "%"; nothing without two hexadecimal digits.
std::optional<char> Escaped(std::string_view digits) {
  if (digits.size() < 2) return {};
  unsigned value = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + 2, value, 16);
  if (error != std::errc() || end != digits.data() + 2) return {};
  return static_cast<char>(value);
}

bool IsUnreserved(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
         std::string_view("-._~").find(c) != std::string_view::npos;
}

}  // namespace

std::optional<std::string> PercentDecoded(std::string_view text) {
  std::string bytes;
  for (std::size_t i = 0; i < text.size(); ++i) {
    char c = text[i];
    if (c == '%') {
      const std::optional<char> byte = Escaped(text.substr(i + 1, 2));
      if (!byte.has_value()) return {};
      c = *byte;
      i += 2;
    }
    if (c == '\0' || c == '\r' || c == '\n') return {};
    bytes += c;
  }
  return bytes;
}

std::string PercentEncoded(std::string_view bytes, std::string_view also) {
  constexpr const char* kDigits = "0123456789ABCDEF";
  std::string text;
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    if (IsUnreserved(c) || also.find(c) != std::string_view::npos) {
      text += c;
    } else {
      text += {'%', kDigits[byte >> 4U], kDigits[byte & 15U]};
    }
  }
  return text;
}

}  // namespace corvane
