#include "kit/Text.h"

#include <cstdint>
#include <utility>

namespace corvane {
namespace {

constexpr int kDeepest = 16;
constexpr char kWithReason[] = "%1\n\n%2";
constexpr char kSentence = 's';
constexpr char kBytes = 'b';

std::optional<std::size_t> TakeNumber(std::string_view& bytes) {
  constexpr std::size_t kLength = 4;
  if (bytes.size() < kLength) return std::nullopt;
  std::size_t number = 0;
  for (std::size_t i = kLength; i-- > 0;)
    number = number << 8 | static_cast<unsigned char>(bytes[i]);
  bytes.remove_prefix(kLength);
  return number;
}

void AppendNumber(std::string& out, std::size_t number) {
  for (int shift = 0; shift < 32; shift += 8) out += static_cast<char>(number >> shift & 0xFF);
}

}  // namespace

Text Text::Raw(std::string_view bytes) {
  Text text;
  text.words_ = bytes;
  return text;
}

Text Text::Lines(std::vector<Text> lines) {
  std::erase_if(lines, [](const Text& line) { return line.IsEmpty(); });
  if (lines.empty()) return {};
  // In pairs, so that many lines are not nested as deeply as they are many.
  while (lines.size() > 1) {
    std::vector<Text> pairs;
    for (std::size_t i = 0; i + 1 < lines.size(); i += 2)
      pairs.push_back(Text("%1\n%2", lines[i], lines[i + 1]));
    if (lines.size() % 2 == 1) pairs.push_back(std::move(lines.back()));
    lines = std::move(pairs);
  }
  return std::move(lines.front());
}

Text Text::WithReason(const Text& text, const Text& reason) {
  if (reason.IsEmpty()) return text;
  return text.IsEmpty() ? reason : Text(kWithReason, text, reason);
}

const Text& Text::Reason() const {
  return isSentence_ && words_ == kWithReason ? places_.back() : *this;
}

std::string_view Text::Identifier() const {
  return isSentence_ ? std::string_view(words_) : std::string_view();
}

std::string_view Text::Bytes() const {
  return isSentence_ ? std::string_view() : std::string_view(words_);
}

std::string Text::English() const {
  if (!isSentence_) return words_;
  std::string english;
  FillPlaces(std::string_view(words_), english, [this](std::size_t place) {
    return place < places_.size() ? places_[place].English() : std::string();
  });
  return english;
}

std::string Text::Flatten() const {
  std::string bytes(1, isSentence_ ? kSentence : kBytes);
  AppendNumber(bytes, words_.size());
  bytes += words_;
  AppendNumber(bytes, places_.size());
  for (const Text& place : places_) bytes += place.Flatten();
  return bytes;
}

std::optional<Text> Text::Unflatten(std::string_view bytes) {
  auto text = Take(bytes, 0);
  return bytes.empty() ? text : std::nullopt;
}

std::optional<Text> Text::Take(std::string_view& bytes, int depth) {
  if (depth > kDeepest || bytes.empty()) return std::nullopt;
  Text text;
  const char kind = bytes.front();
  if (kind != kSentence && kind != kBytes) return std::nullopt;
  text.isSentence_ = kind == kSentence;
  bytes.remove_prefix(1);
  const auto length = TakeNumber(bytes);
  if (!length || *length > bytes.size()) return std::nullopt;
  text.words_ = bytes.substr(0, *length);
  bytes.remove_prefix(*length);
  const auto count = TakeNumber(bytes);
  if (!count || *count > bytes.size()) return std::nullopt;
  for (std::size_t i = 0; i < *count; ++i) {
    auto place = Take(bytes, depth + 1);
    if (!place) return std::nullopt;
    text.places_.push_back(std::move(*place));
  }
  return text;
}

}  // namespace corvane
