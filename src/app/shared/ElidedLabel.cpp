#include "app/shared/ElidedLabel.h"

#include <QHelpEvent>
#include <QPainter>
#include <QToolTip>

#include "app/shared/ScreenText.h"
#include "app/shared/Tones.h"

namespace corvane {

ElidedLabel::ElidedLabel(QWidget* parent, Qt::TextElideMode mode) : QLabel(parent), mode_(mode) {
  setTextFormat(Qt::PlainText);
  setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}

void ElidedLabel::SetSecondary(bool secondary) {
  secondary_ = secondary;
  update();
}

QSize ElidedLabel::minimumSizeHint() const {
  return {fontMetrics().averageCharWidth() * 4, QLabel::minimumSizeHint().height()};
}

void ElidedLabel::resizeEvent(QResizeEvent* event) {
  QLabel::resizeEvent(event);
  update();
}

void ElidedLabel::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  const QPalette::ColorGroup group = isEnabled() ? QPalette::Active : QPalette::Disabled;
  painter.setPen(secondary_ && isEnabled() ? ToneOf(palette(), Tone::Secondary)
                                           : palette().color(group, QPalette::WindowText));
  const QString line = QString(text()).replace('\n', ' ');
  const auto flags = static_cast<int>(alignment()) | Qt::TextSingleLine;
  painter.drawText(contentsRect(), flags,
                   fontMetrics().elidedText(line, mode_, contentsRect().width()));
}

bool ElidedLabel::event(QEvent* event) {
  if (event->type() != QEvent::ToolTip || !toolTip().isEmpty()) return QLabel::event(event);
  const bool whole = fontMetrics().horizontalAdvance(text()) <= contentsRect().width();
  if (!whole) {
    QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), Harmless(text()), this);
  }
  return true;
}

}  // namespace corvane
