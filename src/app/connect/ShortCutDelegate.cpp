#include "app/connect/ShortCutDelegate.h"

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
  const QByteArray symbol = index.data(ShortCutItem::kWarning).toString().toLatin1();
  const QColor color = TextColor(option, index, !symbol.isEmpty());
  QRect room = option.rect.adjusted(kInset, 0, -4, 0);
  if (!symbol.isEmpty()) {
    const QRectF sign(room.x(), room.y() + (room.height() - kSymbol) / 2.0, kSymbol, kSymbol);
    PaintSymbol(*painter, sign, symbol.constData(), color);
    room.setLeft(room.left() + kWarningText);
  }
  painter->setPen(color);
  painter->drawText(
      room, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
      option.fontMetrics.elidedText(index.data().toString(), Qt::ElideMiddle, room.width()));
  const auto* list = qobject_cast<const QTreeView*>(option.widget);
  if (!list->hasFocus() || list->currentIndex().row() != index.row()) return;
  const QColor line =
      selected ? palette.color(QPalette::HighlightedText) : ToneOf(palette, Tone::Running);
  painter->fillRect(QRect(option.rect.left(), option.rect.bottom() - 1, option.rect.width(), 1),
                    line);
}

QSize ShortCutDelegate::sizeHint(const QStyleOptionViewItem& option,
                                 const QModelIndex& index) const {
  const QSize size = QStyledItemDelegate::sizeHint(option, index);
  const bool warns = !index.data(ShortCutItem::kWarning).toString().isEmpty();
  return {size.width() + kInset + (warns ? kWarningText : 0),
          std::max(size.height(), LookStyle::kRowHeight)};
}

}  // namespace corvane
