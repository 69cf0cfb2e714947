#include "app/shared/Card.h"

#include <QPainter>

#include "app/shared/Tones.h"

namespace corvane {

Card::Card(QWidget* parent) : QFrame(parent) {
  constexpr int kMargin = 12;
  setContentsMargins(kMargin, kMargin, kMargin, kMargin);
}

void Card::paintEvent(QPaintEvent* /*event*/) {
  constexpr double kRadius = 4;
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setBrush(palette().color(QPalette::Base));
  painter.setPen(ToneOf(palette(), Tone::Line));
  painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), kRadius, kRadius);
}

}  // namespace corvane
