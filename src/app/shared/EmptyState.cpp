#include "app/shared/EmptyState.h"

#include <QPainter>
#include <QPalette>
#include <QRect>
#include <algorithm>

#include "app/shared/Symbols.h"
#include "app/shared/Tones.h"

namespace corvane {

void EmptyState::Paint(QPainter& painter, const QRect& rect, const QPalette& palette) const {
  constexpr int kSymbol = 48;
  constexpr int kHeadingGap = 16;
  constexpr int kTextGap = 8;
  constexpr int kWidest = 300;
  painter.save();
  const QFont plain = painter.font();
  const QFont bold = Bold(plain, 125);
  const int width = std::min(rect.width() - 32, kWidest);
  const QRect room(rect.center().x() - width / 2, 0, width, 10'000);
  const auto wrapped = Qt::AlignHCenter | Qt::AlignTop | Qt::TextWordWrap;
  const int headingHeight =
      QFontMetrics(bold).boundingRect(room, static_cast<int>(wrapped), heading).height();
  const int textHeight =
      QFontMetrics(plain).boundingRect(room, static_cast<int>(wrapped), text).height();
  int y = rect.center().y() - (kSymbol + kHeadingGap + headingHeight + kTextGap + textHeight) / 2;
  y = std::max(y, rect.top());
  const QColor secondary = ToneOf(palette, Tone::Secondary);
  PaintSymbol(painter, QRectF(rect.center().x() - kSymbol / 2.0, y, kSymbol, kSymbol), symbol,
              secondary);
  y += kSymbol + kHeadingGap;
  painter.setFont(bold);
  painter.setPen(palette.color(QPalette::Text));
  painter.drawText(QRect(room.x(), y, width, headingHeight), static_cast<int>(wrapped), heading);
  y += headingHeight + kTextGap;
  painter.setFont(plain);
  painter.setPen(secondary);
  painter.drawText(QRect(room.x(), y, width, textHeight), static_cast<int>(wrapped), text);
  painter.restore();
}

}  // namespace corvane
