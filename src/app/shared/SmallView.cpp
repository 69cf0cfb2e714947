#include "app/shared/SmallView.h"

#include <QFontInfo>
#include <QPainter>

namespace corvane {
namespace {

constexpr double kTextScale = 0.9;
constexpr double kLineStrength = 0.36;
constexpr int kLightFactor = 115;

QColor Mixed(const QColor& from, const QColor& to, double part) {
  const auto channel = [part](int a, int b) { return static_cast<int>(a + part * (b - a)); };
  return {channel(from.red(), to.red()), channel(from.green(), to.green()),
          channel(from.blue(), to.blue())};
}

}  // namespace

SmallView::SmallView(QWidget* parent) : QLabel(parent) {
  setObjectName("smallview");
  setTextFormat(Qt::PlainText);
  setAlignment(Qt::AlignRight | Qt::AlignVCenter);
  setContentsMargins(5, 2, 4, 2);
  setMinimumWidth(64);
  setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
  QFont small = font();
  small.setPointSizeF(kTextScale * QFontInfo(small).pointSizeF());
  setFont(small);
  SetText(0);
}

void SmallView::SetText(int count) {
  count_ = count;
  SetText(count == 1 ? tr("1 Item") : tr("%n Items", "", count));
}

void SmallView::SetText(const QString& text) {
  setText(text);
  // A label's accessible name stands in for its text, so it holds the text too.
  setAccessibleName(tr("Number of entries: %1").arg(text));
}

void SmallView::paintEvent(QPaintEvent* event) {
  QPainter painter(this);
  // Not the palette's own bevel colours: themes that set only the main roles leave those as they
  // are in a light theme.
  const QColor ground = palette().color(QPalette::Window);
  const QColor line = Mixed(ground, palette().color(QPalette::WindowText), kLineStrength);
  const QColor light = ground.lighter(kLightFactor);
  painter.fillRect(rect(), ground);
  painter.fillRect(0, 1, width(), 1, light);
  painter.fillRect(0, 1, 1, height() - 2, light);
  painter.fillRect(0, 0, width(), 1, line);
  painter.fillRect(0, height() - 1, width(), 1, line);
  painter.end();
  QLabel::paintEvent(event);
}

}  // namespace corvane
