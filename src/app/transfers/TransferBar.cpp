#include "app/transfers/TransferBar.h"

#include <QHBoxLayout>

#include "app/shared/IconButton.h"

namespace corvane {
namespace {

// A tooltip says more than the text; the name stays.
void Set(IconButton& button, bool enabled, const QString& tip) {
  button.setEnabled(enabled);
  button.setToolTip(tip);
}

}  // namespace

TransferBar::TransferBar(QWidget* parent)
    : QWidget(parent),
      pause_(new IconButton("pause", tr("Pause All"), this)),
      retry_(new IconButton("refresh", tr("Retry Failed"), this)),
      remove_(new IconButton("tick", tr("Remove Finished"), this)) {
  pause_->setObjectName("pauseAll");
  pause_->ShowText(tr("Pause All"));
  retry_->setObjectName("retryFailed");
  retry_->ShowText(tr("Retry Failed"));
  remove_->setObjectName("removeFinished");
  remove_->ShowText(tr("Remove Finished"));
  auto* layout = new QHBoxLayout(this);
  layout->setContentsMargins(8, 4, 8, 4);
  layout->addWidget(pause_);
  layout->addWidget(retry_);
  layout->addStretch();
  layout->addWidget(remove_);
  connect(pause_, &QToolButton::clicked, this,
          [this] { resumes_ ? Q_EMIT ResumeAll() : Q_EMIT PauseAll(); });
  connect(retry_, &QToolButton::clicked, this, &TransferBar::RetryFailed);
  connect(remove_, &QToolButton::clicked, this, &TransferBar::RemoveFinished);
  Update({});
}

QSize TransferBar::minimumSizeHint() const {
  constexpr int kLeast = 160;
  return {kLeast, QWidget::minimumSizeHint().height()};
}

void TransferBar::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  FitTexts();
}

void TransferBar::FitTexts() {
  const auto show = [this](Qt::ToolButtonStyle style) {
    for (IconButton* button : {pause_, retry_, remove_}) button->setToolButtonStyle(style);
  };
  show(Qt::ToolButtonTextBesideIcon);
  int wanted = layout()->contentsMargins().left() + layout()->contentsMargins().right() +
               2 * layout()->spacing();
  for (const IconButton* button : {pause_, retry_, remove_}) wanted += button->sizeHint().width();
  if (wanted > width()) show(Qt::ToolButtonIconOnly);
}

void TransferBar::Update(const TransferChoices& choices) {
  resumes_ = !choices.anyToPause && choices.anyPaused;
  const QString text = resumes_ ? tr("Resume All") : tr("Pause All");
  if (pause_->text() != text) {
    pause_->SetSymbol(resumes_ ? "play" : "pause", text);
    pause_->setText(text);
    FitTexts();
  }
  Set(*pause_, choices.anyToPause || resumes_,
      resumes_             ? tr("Go on with everything that is paused")
      : choices.anyToPause ? tr("Pause everything that runs or waits")
                           : tr("Nothing runs that could be paused"));
  Set(*retry_, choices.anyFailed,
      choices.anyFailed ? tr("Try everything once more that failed or was cancelled")
                        : tr("Nothing has failed that could be tried once more"));
  Set(*remove_, choices.anyDone,
      choices.anyDone ? tr("Take everything that is done off the list")
                      : tr("Nothing in the list is done"));
}

}  // namespace corvane
