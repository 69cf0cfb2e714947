#include "app/browser/ConnectingPage.h"

#include <QAccessible>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QVBoxLayout>

#include "app/shared/BusySign.h"
#include "app/shared/ElidedLabel.h"
#include "app/shared/Pages.h"
#include "app/shared/Shown.h"
#include "app/shared/Symbols.h"
#include "app/shared/Tones.h"

namespace corvane {

/// A line: a sign, and what the step is about.
class ConnectingPage::Step : public QWidget {
 public:
  explicit Step(QWidget* parent)
      : QWidget(parent), busy_(new BusySign(this)), text_(new ElidedLabel(this)) {
    constexpr int kGap = 12;
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(kGap);
    layout->addWidget(busy_);
    layout->addWidget(text_, 1);
  }

  void Set(const ConnectStep& step) {
    const QString text = Shown(step.text);
    state_ = step.state;
    busy_->SetBusy(state_ == State::Running);
    text_->setText(text);
    text_->SetSecondary(state_ == State::Waiting);
    setAccessibleName(state_ == State::Done ? ConnectingPage::tr("%1 Done.").arg(text) : text);
    QAccessibleEvent event(this, QAccessible::Alert);
    QAccessible::updateAccessibility(&event);
    show();
    update();
  }

 protected:
  void paintEvent(QPaintEvent* /*event*/) override {
    if (state_ == State::Running) return;
    QPainter painter(this);
    const bool done = state_ == State::Done;
    PaintSymbol(painter, busy_->geometry(), done ? "tick-circle" : "circle",
                ToneOf(palette(), done ? Tone::Good : Tone::Stopped));
  }

 private:
  using State = ConnectStep::State;

  BusySign* busy_;
  ElidedLabel* text_;
  State state_ = State::Waiting;
};

ConnectingPage::ConnectingPage(QWidget* parent)
    : QWidget(parent),
      heading_(new QLabel(this)),
      lines_(new QVBoxLayout),
      cancel_(new QPushButton(tr("&Cancel"), this)) {
  setObjectName("ConnectingPage");
  heading_->setFont(Bold(font(), 125));
  heading_->setTextFormat(Qt::PlainText);
  heading_->setWordWrap(true);
  lines_->setSpacing(10);
  auto* buttons = new QHBoxLayout;
  buttons->addWidget(cancel_);
  buttons->addStretch();
  auto* column = LayOutPage(this);
  column->addWidget(heading_);
  column->addSpacing(16);
  column->addLayout(lines_);
  column->addSpacing(24);
  column->addLayout(buttons);
  connect(cancel_, &QPushButton::clicked, this, &ConnectingPage::CancelPressed);
}

void ConnectingPage::Begin(const QString& host) {
  heading_->setText(tr("Connecting to %1").arg(host));
  for (Step* step : steps_) delete step;
  steps_.clear();
}

ConnectingPage::Step& ConnectingPage::At(std::size_t number) {
  while (steps_.size() <= number) {
    steps_.push_back(new Step(this));
    steps_.back()->hide();
    lines_->addWidget(steps_.back());
  }
  return *steps_[number];
}

void ConnectingPage::Show(const ConnectStep& step) {
  At(static_cast<std::size_t>(step.kind)).Set(step);
}

void ConnectingPage::showEvent(QShowEvent* event) {
  QWidget::showEvent(event);
  cancel_->setFocus();
}

}  // namespace corvane
