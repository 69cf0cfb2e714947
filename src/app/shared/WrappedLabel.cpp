#include "app/shared/WrappedLabel.h"

#include <QPainter>
#include <QRegularExpression>
#include <QStringList>
#include <algorithm>

#include "app/shared/Tones.h"

namespace corvane {

WrappedLabel::WrappedLabel(const QString& text, QWidget* parent) : QLabel(text, parent) {
  setTextFormat(Qt::PlainText);
  setTextInteractionFlags(Qt::TextSelectableByMouse);
  setAlignment(Qt::AlignLeft | Qt::AlignTop);
  setWordWrap(true);
}

int WrappedLabel::NaturalWidth() const {
  int widest = 0;
  const QStringList lines = text().split('\n');
  for (const QString& line : lines) {
    widest = std::max(widest, fontMetrics().horizontalAdvance(line));
  }
  return widest + 1;
}

void WrappedLabel::WrapAt(int width) {
  // A label breaks between words only.
  const int longest = std::max(1, width / (2 * fontMetrics().averageCharWidth()));
  static const QChar kBreak(0x200B);
  const QRegularExpression run(QStringLiteral("(\\S{%1})(?=\\S)").arg(longest));
  if (NaturalWidth() > width) setText(text().replace(run, QStringLiteral("\\1") + kBreak));
  setFixedWidth(width);
  setMinimumHeight(std::max(0, heightForWidth(width)));
}

void WrappedLabel::SetSecondary() {
  secondary_ = true;
  setTextInteractionFlags(Qt::NoTextInteraction);
  update();
}

void WrappedLabel::paintEvent(QPaintEvent* event) {
  if (!secondary_) return QLabel::paintEvent(event);
  QPainter painter(this);
  painter.setPen(ToneOf(palette(), Tone::Secondary));
  painter.drawText(rect(), static_cast<int>(alignment() | Qt::TextWordWrap), text());
}

}  // namespace corvane
