#include "app/browser/RowDelegate.h"

#include <QApplication>
#include <QLineEdit>
#include <QPainter>
#include <algorithm>
#include <string_view>

#include "app/browser/DirListModel.h"
#include "app/shared/LookStyle.h"
#include "app/shared/ScreenText.h"
#include "app/shared/Style.h"
#include "app/shared/Symbols.h"
#include "app/shared/Tones.h"

namespace corvane {
namespace {

constexpr int kSymbolX = 12;
constexpr int kSymbol = 16;
constexpr int kMargin = 8;

bool Has(const QStyleOptionViewItem& option, QStyle::StateFlag state) {
  return option.state.testFlag(state);
}

/// The colour of a cell's text.
QColor Ink(const RowColors& colors, const QStyleOptionViewItem& option, bool secondary) {
  if (!Has(option, QStyle::State_Enabled)) return colors.disabled;
  if (Has(option, QStyle::State_Selected)) return colors.selectedText;
  return secondary ? colors.secondary : colors.text;
}

/// How wide all digits are drawn, so that figures stand in columns; 0 where they are so by nature.
int FigureWidth(const QFontMetrics& font) {
  int least = font.horizontalAdvance('0');
  int most = least;
  for (char digit = '1'; digit <= '9'; ++digit) {
    const int width = font.horizontalAdvance(QLatin1Char(digit));
    least = std::min(least, width);
    most = std::max(most, width);
  }
  return least == most ? 0 : most;
}

void PaintFigures(QPainter& painter, const QRect& rect, Qt::Alignment side, const QString& text) {
  const QFontMetrics font = painter.fontMetrics();
  const int wide = FigureWidth(font);
  if (wide == 0 || side != Qt::AlignRight) {
    const QString shown = font.elidedText(text, Qt::ElideRight, rect.width());
    painter.drawText(rect, static_cast<int>(side | Qt::AlignVCenter) | Qt::TextSingleLine, shown);
    return;
  }
  int x = rect.right() + 1;
  for (auto letter = text.crbegin(); letter != text.crend(); ++letter) {
    const int own = font.horizontalAdvance(*letter);
    const int width = letter->isDigit() ? wide : own;
    x -= width;
    const QRect place(x + (width - own) / 2, rect.top(), own + 2, rect.height());
    painter.drawText(place, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                     QString(*letter));
  }
}

// A name gives way in its middle; behind it stands where a link leads, as far as there is room.
void PaintName(QPainter& painter, const QRect& rect, const MWListItem& item, const QColor& ink,
               const QColor& secondary) {
  constexpr int kGap = 8;
  const QFontMetrics font = painter.fontMetrics();
  const QString name = font.elidedText(item.NameText(), Qt::ElideMiddle, rect.width());
  painter.setPen(ink);
  painter.drawText(rect, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, name);
  const std::string& target = item.Attributes().linkTarget;
  if (target.empty()) return;
  const QRect rest = rect.adjusted(font.horizontalAdvance(name) + kGap, 0, 0, 0);
  if (rest.width() < font.averageCharWidth() * 4) return;
  painter.setPen(secondary);
  painter.drawText(rest, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                   font.elidedText(QChar(0x2192) + QStringLiteral(" ") + item.TextOf(target),
                                   Qt::ElideMiddle, rest.width()));
}

void PaintSymbolOf(QPainter& painter, const QRect& cell, const MWListItem& item,
                   const QStyleOptionViewItem& option, const QColor& ink) {
  const char* symbol = SymbolOf(item.Kind());
  const bool plain = Has(option, QStyle::State_Selected) || !Has(option, QStyle::State_Enabled) ||
                     item.Kind() != EntryKind::Directory;
  const QRect place(cell.left() + kSymbolX, cell.top() + (cell.height() - kSymbol) / 2, kSymbol,
                    kSymbol);
  PaintSymbol(painter, place, symbol, plain ? ink : EntryColor(option.palette, symbol));
}

/// How many characters of a name are selected to be typed over: not the ending of a file.
qsizetype StemLength(const MWListItem& item, const QString& name) {
  const qsizetype dot = name.lastIndexOf('.');
  const bool whole = item.Type() == kDirectory || dot <= 0;
  if (whole) return name.size();
  const qsizetype second = name.lastIndexOf(QLatin1String(".tar."), -1, Qt::CaseInsensitive);
  return second > 0 && second + 4 == dot ? second : dot;
}

}  // namespace

RowDelegate::RowDelegate(const DirListModel& rows, QObject* parent)
    : QStyledItemDelegate(parent), rows_(rows) {}

void RowDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                        const QModelIndex& index) const {
  const Style& style = Style::InForce();
  const RowColors colors = style.ColorsOfRows(option.palette);
  const bool selected = Has(option, QStyle::State_Selected);
  painter->save();
  painter->fillRect(option.rect, selected ? colors.selection : colors.ground);
  if (!selected && Has(option, QStyle::State_MouseOver) && Has(option, QStyle::State_Enabled)) {
    painter->fillRect(option.rect, ToneOf(option.palette, Tone::Hover));
  }
  const MWListItem& item = rows_.At(index.row());
  const int column = index.column();
  const QColor ink = Ink(colors, option, column != DirListModel::kName);
  const QRect text = option.rect.adjusted(kMargin, 0, -kMargin, 0);
  painter->setPen(ink);
  if (column == DirListModel::kName) {
    PaintSymbolOf(*painter, option.rect, item, option, ink);
    painter->setFont(style.FiguresFont(option.font));
    PaintName(*painter, option.rect.adjusted(kNameX, 0, -kMargin, 0), item, ink,
              Ink(colors, option, true));
  } else {
    const bool figures = column == DirListModel::kSize || column == DirListModel::kDate;
    painter->setFont(style.FiguresFont(option.font));
    PaintFigures(*painter, text, figures ? style.FiguresSide() : Qt::AlignLeft,
                 index.data().toString());
  }
  painter->restore();
}

QSize RowDelegate::sizeHint(const QStyleOptionViewItem& option,
                            const QModelIndex& /*index*/) const {
  return {0, std::max(LookStyle::kRowHeight, option.fontMetrics.height() + kMargin)};
}

QWidget* RowDelegate::createEditor(QWidget* parent, const QStyleOptionViewItem& /*option*/,
                                   const QModelIndex& /*index*/) const {
  auto* editor = new QLineEdit(parent);
  editor->setObjectName("NameEditor");
  editor->setAccessibleName(tr("New name"));
  return editor;
}

void RowDelegate::updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem& option,
                                       const QModelIndex& /*index*/) const {
  constexpr int kFrame = 6;  // so that the text stays where it is
  editor->setGeometry(option.rect.adjusted(kNameX - kFrame, 0, -2, 0));
}

// What has been typed stays when the row changes meanwhile.
void RowDelegate::setEditorData(QWidget* editor, const QModelIndex& index) const {
  auto* field = qobject_cast<QLineEdit*>(editor);
  if (!field->isModified()) field->setText(rows_.At(index.row()).NameText());
}

void RowDelegate::setModelData(QWidget* editor, QAbstractItemModel* /*model*/,
                               const QModelIndex& /*index*/) const {
  Q_EMIT Entered(qobject_cast<const QLineEdit*>(editor)->text());
}

void RowDelegate::SelectStem(QLineEdit& editor, const MWListItem& item) {
  editor.setSelection(0, static_cast<int>(StemLength(item, editor.text())));
}

}  // namespace corvane
