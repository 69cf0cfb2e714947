#include "app/shared/ModernStyle.h"

#include <QCoreApplication>
#include <QPalette>
#include <algorithm>

#include "app/shared/Figures.h"
#include "app/shared/Tones.h"
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

QString ModernStyle::FileSize(std::int64_t bytes) const {
  return ShortSize(bytes);
}

QString ModernStyle::EntrySize(std::int64_t size, const std::string& /*recorded*/) const {
  return size < 0 ? QString() : ShortSize(size);
}

QString ModernStyle::EntryDate(const QDate& day, const std::optional<QTime>& time,
                               const std::string& /*recorded*/) const {
  return ShortDate(day, time);
}

InfoTitles ModernStyle::TitlesOfInfo() const {
  return {.heading = QCoreApplication::translate("corvane::InfoPane", "File Info"),
          .permissions = QCoreApplication::translate("corvane::InfoPane", "Permissions"),
          .owner = QCoreApplication::translate("corvane::InfoPane", "Owner"),
          .group = QCoreApplication::translate("corvane::InfoPane", "Group")};
}

RowColors ModernStyle::ColorsOfRows(const QPalette& palette) const {
  return {.ground = palette.color(QPalette::Base),
          .text = palette.color(QPalette::Text),
          .secondary = ToneOf(palette, Tone::Secondary),
          .disabled = palette.color(QPalette::Disabled, QPalette::Text),
          .selection = palette.color(QPalette::Highlight),
          .selectedText = palette.color(QPalette::HighlightedText)};
}

void ModernStyle::Lose(HiddenText& text, qsizetype stars) const {
  Erase(text, text.cursor, stars);
}

const char* ModernStyle::PopUpKey(const char* own, const char* /*described*/) const {
  return own;
}

QString ModernStyle::TitleOf(const BrowserTitle& title) const {
  constexpr int kUsualPort = 21;
  QString server = title.user.isEmpty() ? title.host : title.user + '@' + title.host;
  if (title.port != kUsualPort) server += ':' + QString::number(title.port);
  return title.place.isEmpty() ? server : title.place + QStringLiteral(" – ") + server;
}

QString ModernStyle::Items(int count) const {
  return count == 1 ? QCoreApplication::translate("corvane::Style", "1 item")
                    : QCoreApplication::translate("corvane::Style", "%n items", "", count);
}

QString ModernStyle::NewShortcutTitle() const {
  return QCoreApplication::translate("corvane::ShortCutEditWindow", "New Shortcut");
}

}  // namespace corvane
