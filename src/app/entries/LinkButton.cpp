#include "app/entries/LinkButton.h"

#include <QPainter>
#include <QStyleOptionFocusRect>

namespace corvane {
namespace {

constexpr int kRoom = 4;  // for the ring of the focus

}  // namespace

LinkButton::LinkButton(const QString& text, QWidget* parent) : QAbstractButton(parent) {
  setText(text);
  setAccessibleName(QString(text).remove('&'));
  setFocusPolicy(Qt::StrongFocus);
  setCursor(Qt::PointingHandCursor);
  setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

QSize LinkButton::sizeHint() const {
  return fontMetrics().size(Qt::TextShowMnemonic, text()) + QSize(2 * kRoom, kRoom);
}

void LinkButton::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  if (hasFocus()) {
    QStyleOptionFocusRect ring;
    ring.initFrom(this);
    style()->drawPrimitive(QStyle::PE_FrameFocusRect, &ring, &painter, this);
  }
  QFont linked = font();
  linked.setUnderline(isEnabled());
  painter.setFont(linked);
  painter.setPen(palette().color(isEnabled() ? QPalette::Link : QPalette::PlaceholderText));
  const int flags = Qt::AlignCenter | Qt::TextHideMnemonic;
  painter.drawText(rect(), flags, text());
}

}  // namespace corvane
