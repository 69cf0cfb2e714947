#include "app/shared/StatusLine.h"

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
class StatusLine::Sign : public QWidget {
 public:
  explicit Sign(QWidget* parent) : QWidget(parent) {
    setObjectName("Sign");
    hide();
  }

  void Set(const char* symbol, const QString& text, Tone tone) {
    symbol_ = symbol;
    text_ = text;
    tone_ = tone;
    setAccessibleName(text);
    setVisible(!text.isEmpty());
    updateGeometry();
    update();
  }

  [[nodiscard]] QSize sizeHint() const override {
    return {kText + fontMetrics().horizontalAdvance(text_), LookStyle::kControlHeight};
  }

 protected:
  void paintEvent(QPaintEvent* /*event*/) override {
    QPainter painter(this);
    const QColor color = ToneOf(palette(), tone_);
    painter.fillRect(kGap, 0, 1, height(), ToneOf(palette(), Tone::Line));
    PaintSymbol(painter, QRectF(kSymbol, (height() - kSize) / 2.0, kSize, kSize), symbol_, color);
    painter.setPen(color);
    painter.drawText(rect().adjusted(kText, 0, 0, 0), Qt::AlignLeft | Qt::AlignVCenter, text_);
  }

 private:
  static constexpr int kGap = 16;  // before the line
  static constexpr int kSymbol = kGap + 16;
  static constexpr int kSize = 16;
  static constexpr int kText = kSymbol + kSize + 8;
  const char* symbol_ = "";
  QString text_;
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

void StatusLine::SetSign(const char* symbol, const QString& text, Tone tone) {
  sign_->Set(symbol, text, tone);
}

}  // namespace corvane
