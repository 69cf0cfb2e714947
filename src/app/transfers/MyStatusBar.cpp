#include "app/transfers/MyStatusBar.h"

#include <QAccessible>
#include <QPainter>
#include <algorithm>
#include <utility>

#include "app/shared/Style.h"
#include "app/shared/Tones.h"
#include "app/transfers/TransferItem.h"

namespace corvane {
namespace {

void Fill(QPainter& painter, const QRect& rect, const QColor& color) {
  constexpr double kRadius = MyStatusBar::kHeight / 2.0;
  painter.setBrush(color);
  painter.drawRoundedRect(rect, kRadius, kRadius);
}

QColor Groove(const QPalette& palette, bool selected) {
  if (!selected) return ToneOf(palette, Tone::Line);
  return Mixed(palette.color(QPalette::HighlightedText), palette.color(QPalette::Highlight), 40);
}

}  // namespace

MyStatusBar::MyStatusBar(QWidget* parent) : QWidget(parent) {
  setObjectName("StatusBar");
  setAccessibleName(tr("Progress"));
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void MyStatusBar::SetItem(const TransferItem* item) {
  item_ = item;
  told_ = -1;
  update();
}

void MyStatusBar::Refresh() {
  update();
  const int percent = Percent();
  if (!QAccessible::isActive() || percent == std::exchange(told_, percent)) return;
  QAccessibleValueChangeEvent event(this, percent);
  QAccessible::updateAccessibility(&event);
}

int MyStatusBar::Percent() const {
  return item_ == nullptr ? 0 : static_cast<int>(100 * item_->Fraction());
}

void MyStatusBar::Draw(QPainter& painter, const QPalette& palette, const QRect& bar,
                       const TransferItem& item, bool selected) {
  QColor color = Style::InForce().BarOf(item.State(), palette);
  if (!color.isValid()) return;
  if (selected) color = palette.color(QPalette::HighlightedText);
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::NoPen);
  Fill(painter, bar, Groove(palette, selected));
  QRect filled = bar;
  filled.setWidth(static_cast<int>(item.Fraction() * bar.width()));
  // A transfer that failed before its first byte still shows its colour.
  if (item.Failed()) filled.setWidth(std::max(filled.width(), 2 * kHeight));
  if (filled.width() > 0) Fill(painter, filled, color);
  painter.restore();
}

void MyStatusBar::paintEvent(QPaintEvent* /*event*/) {
  if (item_ == nullptr) return;
  QPainter painter(this);
  Draw(painter, palette(), QRect(0, (height() - kHeight) / 2, width(), kHeight), *item_);
}

}  // namespace corvane
