#include "app/shared/Strip.h"

#include <QAccessible>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QVBoxLayout>

#include "app/shared/Symbols.h"

namespace corvane {
namespace {

constexpr int kMargin = 12;
constexpr int kSymbol = 16;

QLabel* MakeLine(QWidget* parent) {
  auto* label = new QLabel(parent);
  label->setTextFormat(Qt::PlainText);
  label->setWordWrap(true);
  return label;
}

}  // namespace

Strip::Strip(const char* symbol, Tone tone, QWidget* parent)
    : QWidget(parent),
      symbol_(symbol),
      tone_(tone),
      heading_(MakeLine(this)),
      text_(MakeLine(this)),
      layout_(new QHBoxLayout(this)) {
  setObjectName("Strip");
  heading_->setObjectName("Heading");
  heading_->setFont(Bold(font()));
  auto* lines = new QVBoxLayout;
  lines->setSpacing(4);
  lines->addWidget(heading_);
  lines->addWidget(text_);
  layout_->setContentsMargins(kMargin + kSymbol + kMargin, kMargin, kMargin, kMargin);
  layout_->setSpacing(8);
  layout_->addLayout(lines, 1);
}

void Strip::Set(const QString& heading, const QString& text) {
  heading_->setText(heading);
  text_->setText(text);
  text_->setVisible(!text.isEmpty());
  setAccessibleName(heading + ' ' + text);
  QAccessibleEvent event(this, QAccessible::Alert);
  QAccessible::updateAccessibility(&event);
}

QPushButton* Strip::AddButton(const QString& text) {
  auto* button = new QPushButton(text, this);
  layout_->addWidget(button);
  return button;
}

QString Strip::Heading() const {
  return heading_->text();
}

void Strip::paintEvent(QPaintEvent* /*event*/) {
  constexpr double kRadius = 4;
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const QColor color = ToneOf(palette(), tone_);
  const QColor window = palette().color(QPalette::Window);
  painter.setBrush(Mixed(color, window, 9));
  painter.setPen(Mixed(color, window, 35));
  painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), kRadius, kRadius);
  const double y = heading_->y() + (heading_->fontMetrics().height() - kSymbol) / 2.0;
  PaintSymbol(painter, QRectF(kMargin, y, kSymbol, kSymbol), symbol_, color);
}

}  // namespace corvane
