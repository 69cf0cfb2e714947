#include "app/shared/Rule.h"

#include <QPainter>

#include "app/shared/Tones.h"

namespace corvane {

Rule::Rule(Qt::Orientation orientation, QWidget* parent) : QWidget(parent) {
  if (orientation == Qt::Horizontal) {
    setFixedHeight(1);
  } else {
    setFixedWidth(1);
  }
}

void Rule::paintEvent(QPaintEvent* /*event*/) {
  QPainter(this).fillRect(rect(), ToneOf(palette(), Tone::Line));
}

}  // namespace corvane
