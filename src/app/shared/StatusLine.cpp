#include "app/shared/StatusLine.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QHBoxLayout>
#include <QPainter>

#include "app/shared/BusySign.h"
#include "app/shared/ElidedLabel.h"
#include "app/shared/LookStyle.h"
#include "app/shared/Rule.h"
#include "app/shared/SmallView.h"
#include "app/shared/Symbols.h"

namespace corvane {
namespace {

constexpr int kMargin = 12;

}  // namespace

/// A symbol and words in one colour, behind a line.
class StatusLine::Sign : public QAbstractButton {
 public:
  explicit Sign(QWidget* parent) : QAbstractButton(parent) {
    setObjectName("Sign");
    setFocusPolicy(Qt::TabFocus);
    setAttribute(Qt::WA_Hover);
    hide();
  }

  void Set(const char* symbol, const QString& text, Tone tone) {
    symbol_ = symbol;
    tone_ = tone;
    setText(text);
    setAccessibleName(text);
    setVisible(!text.isEmpty());
    updateGeometry();
    update();
  }

  [[nodiscard]] QSize sizeHint() const override {
    return {kText + fontMetrics().horizontalAdvance(text()) + kAfter, LookStyle::kControlHeight};
  }
  [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

 protected:
  void paintEvent(QPaintEvent* /*event*/) override {
    QPainter painter(this);
    const QColor color = ToneOf(palette(), tone_);
    painter.fillRect(kGap, 0, 1, height(), ToneOf(palette(), Tone::Line));
    PaintSymbol(painter, QRectF(kSymbol, (height() - kSize) / 2.0, kSize, kSize), symbol_, color);
    painter.setPen(color);
    painter.drawText(rect().adjusted(kText, 0, 0, 0), Qt::AlignLeft | Qt::AlignVCenter, text());
    if (hasFocus()) PaintFocus(painter);
  }

 private:
  void PaintFocus(QPainter& painter) const {
    constexpr double kRadius = 3;
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(ToneOf(palette(), Tone::Running), 2));
    painter.drawRoundedRect(QRectF(rect()).adjusted(kSymbol - 6, 4, -1, -4), kRadius, kRadius);
  }

  static constexpr int kGap = 16;  // before the line
  static constexpr int kSymbol = kGap + 16;
  static constexpr int kSize = 16;
  static constexpr int kText = kSymbol + kSize + 8;
  static constexpr int kAfter = 6;  // room for the ring of the focus
  const char* symbol_ = "";
  Tone tone_ = Tone::Secondary;
};

StatusLine::StatusLine(QWidget* parent)
    : QWidget(parent),
      busy_(new BusySign(this)),
      text_(new ElidedLabel(this)),
      figure_(new SmallView(this)),
      sign_(new Sign(this)) {
  setObjectName("Status");
  setFixedHeight(LookStyle::kControlHeight + 1);
  text_->setObjectName("StatusString");
  text_->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
  busy_->hide();
  connect(sign_, &QAbstractButton::clicked, this, &StatusLine::SignPressed);
  auto* line = new QHBoxLayout;
  line->setContentsMargins(kMargin, 0, kMargin, 0);
  line->setSpacing(0);
  line->addWidget(busy_);
  line->addWidget(text_, 1);
  line->addWidget(figure_);
  line->addWidget(sign_);
  auto* whole = new QVBoxLayout(this);
  whole->setContentsMargins(0, 0, 0, 0);
  whole->setSpacing(0);
  whole->addWidget(new Rule(Qt::Horizontal, this));
  whole->addLayout(line, 1);
  SetBusy(false);
}

// A label's accessible name stands in for its text, so it holds the text too.
void StatusLine::SetText(const QString& text) {
  if (text_->text() == text) return;
  text_->setText(text);
  text_->setAccessibleName(tr("Status: %1").arg(text));
  QAccessibleEvent event(text_, QAccessible::Alert);
  QAccessible::updateAccessibility(&event);
}

QString StatusLine::Text() const {
  return text_->text();
}

void StatusLine::SetBusy(bool busy) {
  busy_->SetBusy(busy);
  busy_->setVisible(busy);
  text_->setContentsMargins(busy ? 8 : 0, 0, 0, 0);
}

bool StatusLine::IsBusy() const {
  return busy_->IsBusy();
}

void StatusLine::PutSignBehind(QWidget& before) {
  setTabOrder(&before, sign_);
}

void StatusLine::SetSign(const char* symbol, const QString& text, Tone tone) {
  sign_->Set(symbol, text, tone);
}

}  // namespace corvane
