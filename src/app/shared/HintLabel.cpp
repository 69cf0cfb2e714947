#include "app/shared/HintLabel.h"

#include <QPainter>

#include "app/shared/Tones.h"

namespace corvane {

HintLabel::HintLabel(const QString& text, QWidget* parent) : QLabel(text, parent) {
  setTextFormat(Qt::PlainText);
  setWordWrap(true);
  // As wide as its surroundings let it be, and as high as that needs.
  QSizePolicy policy(QSizePolicy::Ignored, QSizePolicy::Minimum);
  policy.setHeightForWidth(true);
  setSizePolicy(policy);
}

void HintLabel::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  painter.setPen(ToneOf(palette(), Tone::Secondary));
  painter.drawText(contentsRect(), Qt::AlignLeft | Qt::AlignTop | Qt::TextWordWrap, text());
}

}  // namespace corvane
