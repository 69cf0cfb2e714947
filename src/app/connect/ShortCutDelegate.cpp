#include "app/connect/ShortCutDelegate.h"

#include <QLineEdit>
#include <QPainter>
#include <QTreeView>
#include <algorithm>

#include "app/connect/ShortCutItem.h"
#include "app/shared/LookStyle.h"
#include "app/shared/Symbols.h"
#include "app/shared/Tones.h"

namespace corvane {
namespace {

constexpr int kInset = 8;
constexpr int kSymbol = 16;
constexpr int kWarningText = kSymbol + 8;  // from the symbol's left edge

QColor TextColor(const QStyleOptionViewItem& option, const QModelIndex& index, bool warns) {
  const QPalette& palette = option.palette;
  if (option.state.testFlag(QStyle::State_Selected)) {
    return palette.color(QPalette::HighlightedText);
  }
  if (warns) return ToneOf(palette, Tone::Caution);
  const bool label = index.column() == ShortCutItem::kLabel;
  return label ? palette.color(QPalette::Text) : ToneOf(palette, Tone::Secondary);
}

}  // namespace

void ShortCutDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                             const QModelIndex& index) const {
  const QPalette& palette = option.palette;
  const bool selected = option.state.testFlag(QStyle::State_Selected);
  if (selected) {
    painter->fillRect(option.rect, palette.color(QPalette::Highlight));
  } else if (option.state.testFlag(QStyle::State_MouseOver)) {
    painter->fillRect(option.rect, ToneOf(palette, Tone::Hover));
  }
  QByteArray symbol = index.data(ShortCutItem::kWarning).toString().toLatin1();
  const QColor color = TextColor(option, index, !symbol.isEmpty());
  QColor signColor = color;
  if (const QString sign = index.data(ShortCutItem::kSign).toString(); !sign.isEmpty()) {
    symbol = sign.toLatin1();
    if (!selected) signColor = EntryColor(palette, symbol.constData());
  }
  QRect room = option.rect.adjusted(kInset, 0, -4, 0);
  if (!symbol.isEmpty()) {
    const QRectF sign(room.x(), room.y() + (room.height() - kSymbol) / 2.0, kSymbol, kSymbol);
    PaintSymbol(*painter, sign, symbol.constData(), signColor);
    room.setLeft(room.left() + kWarningText);
  }
  painter->setPen(color);
  painter->drawText(
      room, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
      option.fontMetrics.elidedText(index.data().toString(), Qt::ElideMiddle, room.width()));
  const auto* list = qobject_cast<const QTreeView*>(option.widget);
  if (!list->hasFocus() || list->currentIndex().siblingAtColumn(0) != index.siblingAtColumn(0))
    return;
  const QColor line =
      selected ? palette.color(QPalette::HighlightedText) : ToneOf(palette, Tone::Running);
  painter->fillRect(QRect(option.rect.left(), option.rect.bottom() - 1, option.rect.width(), 1),
                    line);
}

void ShortCutDelegate::updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem& option,
                                            const QModelIndex& /*index*/) const {
  constexpr int kLeast = 160;
  QRect room = option.rect.adjusted(kInset + kWarningText - 6, 0, 0, 0);
  room.setWidth(std::max(room.width(), kLeast));
  editor->setGeometry(room);
}

QWidget* ShortCutDelegate::createEditor(QWidget* parent, const QStyleOptionViewItem& /*option*/,
                                        const QModelIndex& /*index*/) const {
  auto* field = new QLineEdit(parent);
  field->setObjectName("FolderName");
  field->setAccessibleName(tr("Name of the folder"));
  return field;
}

QSize ShortCutDelegate::sizeHint(const QStyleOptionViewItem& option,
                                 const QModelIndex& index) const {
  const QSize size = QStyledItemDelegate::sizeHint(option, index);
  const bool sign = !index.data(ShortCutItem::kWarning).toString().isEmpty() ||
                    !index.data(ShortCutItem::kSign).toString().isEmpty();
  return {size.width() + kInset + (sign ? kWarningText : 0),
          std::max(size.height(), LookStyle::kRowHeight)};
}

}  // namespace corvane
