#include "app/edited/EditedDelegate.h"

#include <QApplication>
#include <QIcon>
#include <QPainter>

#include "app/edited/EditedModel.h"
#include "app/shared/LookStyle.h"

namespace corvane {
namespace {

constexpr int kLeft = 8;     // of a cell, as in the header
constexpr int kSymbol = 16;  // in a box that leaves a little on each side
constexpr int kBox = 24;

}  // namespace

void EditedDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                           const QModelIndex& index) const {
  QStyleOptionViewItem cell = option;
  initStyleOption(&cell, index);
  const QStyle& style = cell.widget != nullptr ? *cell.widget->style() : *QApplication::style();
  style.drawPrimitive(QStyle::PE_PanelItemViewItem, &cell, painter, cell.widget);
  const bool selected = cell.state.testFlag(QStyle::State_Selected);
  QRect rest = cell.rect.adjusted(kLeft, 0, -kLeft, 0);
  if (!cell.icon.isNull()) {
    const QRect place(rest.left(), rest.center().y() - kSymbol / 2 + 1, kSymbol, kSymbol);
    cell.icon.paint(painter, place, Qt::AlignCenter, selected ? QIcon::Selected : QIcon::Normal);
    rest.setLeft(rest.left() + kBox);
  }
  // Names and paths give way in their middle, sentences at their end.
  const bool sentence = index.column() == EditedModel::kState;
  const Qt::TextElideMode how = sentence ? Qt::ElideRight : Qt::ElideMiddle;
  painter->save();
  painter->setFont(cell.font);
  painter->setPen(cell.palette.color(selected ? QPalette::HighlightedText : QPalette::Text));
  painter->drawText(rest, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                    cell.fontMetrics.elidedText(cell.text, how, rest.width()));
  painter->restore();
}

QSize EditedDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const {
  return {QStyledItemDelegate::sizeHint(option, index).width(), LookStyle::kControlHeight};
}

}  // namespace corvane
