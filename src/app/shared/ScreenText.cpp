#include "app/shared/ScreenText.h"

#include <QStringList>
#include <QWidget>
#include <algorithm>

#include "util/Encodings.h"

namespace corvane {

QString ToText(std::string_view raw, const std::string& encoding) {
  return QString::fromStdString(DisplayText(raw, encoding));
}

QString ToLines(std::string_view raw) {
  QStringList lines;
  while (!raw.empty()) {
    const std::size_t end = std::min(raw.find('\n'), raw.size());
    std::string_view line = raw.substr(0, end);
    if (line.ends_with('\r')) line.remove_suffix(1);
    lines.append(ToText(line));
    raw.remove_prefix(std::min(end + 1, raw.size()));
  }
  return lines.join('\n');
}

std::string ToBytes(const QString& text) {
  return text.toStdString();
}

std::string EditedBytes(const QString& text, const std::string& shown) {
  constexpr qsizetype kFieldLimit = 32767;  // the field has cut what was longer
  const QString full = ToText(shown);
  const bool untouched = text == full || (text.size() == kFieldLimit && full.startsWith(text));
  return untouched ? shown : ToBytes(text);
}

std::optional<std::string> ToServer(const QString& text, const std::string& encoding,
                                    const std::string& shown) {
  if (!shown.empty() && text == ToText(shown, encoding)) return shown;
  return Encoded(ToBytes(text), encoding);
}

QString Harmless(const QString& text) {
  if (text.isEmpty()) return {};
  return QStringLiteral("<p style=\"white-space:pre-wrap\">%1</p>").arg(text.toHtmlEscaped());
}

void SetTip(QWidget& widget, const QString& text) {
  widget.setToolTip(Harmless(text));
  if (widget.accessibleDescription() != text) widget.setAccessibleDescription(text);
}

QString Label(const QString& text) {
  return QString(text).replace('&', QStringLiteral("&&"));
}

QString ItemText(const std::string& label) {
  constexpr qsizetype kLongest = 100;
  QString shown = ToText(std::string_view(label).substr(0, 4 * kLongest));
  if (shown.size() > kLongest) shown = shown.first(kLongest) + QChar(0x2026);
  return Label(shown);
}

}  // namespace corvane
