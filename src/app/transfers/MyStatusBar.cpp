#include "app/transfers/MyStatusBar.h"

#include <QPainter>

#include "app/transfers/TransferItem.h"

namespace corvane {
namespace {

QColor Colour(const TransferItem& item) {
  if (item.Running()) return {0, 152, 51};
  return item.Failed() ? QColor(228, 0, 0) : QColor(0, 0, 154);
}

}  // namespace

MyStatusBar::MyStatusBar(QWidget* parent) : QWidget(parent) {
  setObjectName("StatusBar");
  setAccessibleName(tr("Progress"));
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void MyStatusBar::SetItem(const TransferItem* item) {
  item_ = item;
  update();
}

void MyStatusBar::Draw(QPainter& painter, const QPalette& palette, const QRect& bar,
                       const TransferItem& item) {
  painter.fillRect(bar, palette.brush(QPalette::Base));
  QRect filled = bar.adjusted(1, 1, 0, 0);
  filled.setWidth(static_cast<int>(item.Fraction() * (bar.width() - 1)));
  // A transfer that failed before its first byte still shows its colour.
  if (item.Failed() && filled.width() < kHeight) filled.setWidth(kHeight);
  painter.fillRect(filled, Colour(item));
  painter.setPen(palette.color(QPalette::Mid));
  painter.drawRect(bar);
}

void MyStatusBar::paintEvent(QPaintEvent* /*event*/) {
  if (item_ == nullptr) return;
  QPainter painter(this);
  Draw(painter, palette(), QRect(0, 0, width() - 1, kHeight), *item_);
}

}  // namespace corvane
