#include "ftp/ListingWords.h"

#include <charconv>

namespace corvane {
namespace {

// The bytes of what parts groups of digits; a blank that does not break lines has one or two.
std::size_t SeparatorAt(std::string_view text) {
  constexpr std::string_view kPlain = ",.'_\xA0";
  if (text.empty()) return 0;
  if (kPlain.find(text.front()) != std::string_view::npos) return 1;
  if (text.starts_with("\xC2\xA0")) return 2;
  return text.starts_with("\xE2\x80\xAF") || text.starts_with("\xE2\x80\x99") ? 3 : 0;
}

std::optional<std::int64_t> GroupedSize(std::string_view text) {
  constexpr std::size_t kGroup = 3;
  constexpr std::int64_t kMost = INT64_MAX / 1000 - 1;
  std::size_t digits = 0;
  std::int64_t value = 0;
  while (digits < text.size() && IsDigit(text[digits])) value = value * 10 + (text[digits++] - '0');
  if (digits == 0 || digits > kGroup) return std::nullopt;
  text.remove_prefix(digits);
  while (!text.empty()) {
    const std::size_t separator = SeparatorAt(text);
    if (separator == 0 || text.size() < separator + kGroup || value > kMost) return std::nullopt;
    const int group = NumberOf(text.substr(separator, kGroup));
    if (group < 0) return std::nullopt;
    value = value * 1000 + group;
    text.remove_prefix(separator + kGroup);
  }
  return value;
}

}  // namespace

Words WordsOf(std::string_view line) {
  Words words;
  while (words.count < words.all.size()) {
    const std::string_view word = TakeWord(line);
    if (word.empty()) break;
    words.all[words.count++] = word;
  }
  return words;
}

std::optional<std::int64_t> SizeOf(std::string_view text) {
  if (text.empty() || !IsDigit(text.front())) return std::nullopt;
  std::int64_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc()) return std::nullopt;
  return end == text.data() + text.size() ? std::optional(value) : GroupedSize(text);
}

bool IsSize(std::string_view text) {
  if (AreDigits(text) || SizeOf(text)) return true;
  constexpr std::string_view kUnits = "bkmgtpBKMGTP";
  if (text.size() < 2 || kUnits.find(text.back()) == std::string_view::npos) return false;
  text.remove_suffix(1);
  const std::size_t point = text.find_first_of(".,");
  if (point != std::string_view::npos && !AreDigits(text.substr(point + 1))) return false;
  return AreDigits(text.substr(0, std::min(point, text.size())));
}

}  // namespace corvane
