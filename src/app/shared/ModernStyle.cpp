#include "app/shared/ModernStyle.h"

#include <algorithm>

#include "util/Encodings.h"

namespace corvane {
namespace {

// Where the character of that number begins among the bytes.
std::size_t OffsetOf(const std::string& bytes, qsizetype character) {
  if (!IsUtf8(bytes)) return std::min(static_cast<std::size_t>(character), bytes.size());
  std::size_t at = 0;
  for (; at < bytes.size(); ++at) {
    if ((bytes[at] & '\xC0') != '\x80' && character-- == 0) break;
  }
  return at;
}

void Erase(HiddenText& text, qsizetype first, qsizetype count) {
  const std::size_t begin = OffsetOf(text.bytes, first);
  text.bytes.erase(begin, OffsetOf(text.bytes, first + count) - begin);
  text.stars = CharactersIn(text.bytes);
  text.cursor = first;
  text.selected = 0;
}

}  // namespace

void ModernStyle::Type(HiddenText& text, const QString& typed) const {
  if (text.selected > 0) Erase(text, text.selection, text.selected);
  const std::string bytes = typed.toStdString();
  text.bytes.insert(OffsetOf(text.bytes, text.cursor), bytes);
  text.stars = CharactersIn(text.bytes);
  text.cursor += CharactersIn(bytes);
}

void ModernStyle::Backspace(HiddenText& text) const {
  if (text.selected > 0) return Erase(text, text.selection, text.selected);
  if (text.cursor > 0) Erase(text, text.cursor - 1, 1);
}

void ModernStyle::Delete(HiddenText& text) const {
  if (text.selected > 0) return Erase(text, text.selection, text.selected);
  Erase(text, text.cursor, 1);
}

void ModernStyle::Lose(HiddenText& text, qsizetype stars) const {
  Erase(text, text.cursor, stars);
}

}  // namespace corvane
