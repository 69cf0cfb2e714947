#include "app/shared/ClassicStyle.h"

#include <QCoreApplication>
#include <QFontDatabase>
#include <QStringList>

#include "util/FileSizeString.h"

namespace corvane {
namespace {

void PopChars(HiddenText& text, qsizetype count) {
  for (; count > 0; --count) text.PopChar();
}

void EraseStars(HiddenText& text, qsizetype first, qsizetype count) {
  text.stars -= count;
  text.cursor = first;
  text.selected = 0;
}

}  // namespace

// A byte goes for each selected star.
void ClassicStyle::Type(HiddenText& text, const QString& typed) const {
  if (text.selected > 0) {
    PopChars(text, text.selected);
    EraseStars(text, text.selection, text.selected);
  }
  const std::string bytes = typed.toStdString();
  text.PushChar(bytes);
  const qsizetype stars = CharactersIn(bytes);
  text.stars += stars;
  text.cursor += stars;
}

// One byte, and one more for each place from the selection's end down to its start, both included:
// two bytes where nothing is selected.
void ClassicStyle::Backspace(HiddenText& text) const {
  if (text.selected == 0 && text.cursor == 0) return;
  PopChars(text, text.selected + 2);
  if (text.selected > 0) {
    EraseStars(text, text.selection, text.selected);
  } else {
    EraseStars(text, text.cursor - 1, 1);
  }
}

void ClassicStyle::Delete(HiddenText& /*text*/) const {}

QString ClassicStyle::FileSize(std::int64_t bytes) const {
  return EntrySize(bytes, FileSizeString(std::to_string(bytes)));
}

QString ClassicStyle::EntrySize(std::int64_t /*size*/, const std::string& recorded) const {
  return QString::fromStdString(recorded)
      .replace(QStringLiteral("<dir>"),
               QCoreApplication::translate("corvane::DirListModel", "<dir>"))
      .replace(QStringLiteral("<link>"),
               QCoreApplication::translate("corvane::DirListModel", "<link>"))
      .replace('.', QCoreApplication::translate("corvane::DirListModel", ".",
                                                "the decimal point of a size"));
}

QString ClassicStyle::EntryDate(const QDate& /*day*/, const std::optional<QTime>& /*time*/,
                                const std::string& recorded) const {
  QString text = QString::fromStdString(recorded);
  const QStringList parts = text.split('/');
  if (parts.size() != 3) return text;
  return QCoreApplication::translate("corvane::DirListModel", "%1/%2/%3", "month, day, year")
      .arg(parts[0], parts[1], parts[2]);
}

QFont ClassicStyle::FiguresFont(const QFont& /*text*/) const {
  return QFontDatabase::systemFont(QFontDatabase::FixedFont);
}

InfoTitles ClassicStyle::TitlesOfInfo() const {
  return {.heading = QCoreApplication::translate("corvane::DirListView", "File Info:"),
          .permissions = QCoreApplication::translate("corvane::DirListView", "Perm: "),
          .owner = QCoreApplication::translate("corvane::DirListView", "User: "),
          .group = QCoreApplication::translate("corvane::DirListView", "Group: ")};
}

RowColors ClassicStyle::ColorsOfRows(const QPalette& /*palette*/) const {
  return {.ground = Qt::white,
          .text = Qt::black,
          .secondary = Qt::black,
          .disabled = QColor(189, 186, 189),
          .selection = QColor(216, 216, 216),
          .selectedText = Qt::black};
}

void ClassicStyle::Lose(HiddenText& text, qsizetype stars) const {
  PopChars(text, stars);
}

const char* ClassicStyle::PopUpKey(const char* /*own*/, const char* described) const {
  return described;
}

QString ClassicStyle::TitleOf(const BrowserTitle& title) const {
  return QCoreApplication::translate("corvane::Style", "Connected To: %1").arg(title.host);
}

QString ClassicStyle::Items(int count) const {
  return count == 1 ? QCoreApplication::translate("corvane::Style", "1 Item")
                    : QCoreApplication::translate("corvane::Style", "%1 Items").arg(count);
}

QString ClassicStyle::NewShortcutTitle() const {
  return QCoreApplication::translate("corvane::ShortCutEditWindow", "Add Shortcut");
}

}  // namespace corvane
