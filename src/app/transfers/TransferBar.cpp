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
      retry_(new IconButton("refresh", tr("Retry Failed"), this)),
      remove_(new IconButton("tick", tr("Remove Finished"), this)) {
  retry_->setObjectName("retryFailed");
  retry_->ShowText(tr("Retry Failed"));
  remove_->setObjectName("removeFinished");
  remove_->ShowText(tr("Remove Finished"));
  auto* layout = new QHBoxLayout(this);
  layout->setContentsMargins(8, 4, 8, 4);
  layout->addWidget(retry_);
  layout->addStretch();
  layout->addWidget(remove_);
  connect(retry_, &QToolButton::clicked, this, &TransferBar::RetryFailed);
  connect(remove_, &QToolButton::clicked, this, &TransferBar::RemoveFinished);
  Update(false, false);
}

void TransferBar::Update(bool anyFailed, bool anyDone) {
  Set(*retry_, anyFailed,
      anyFailed ? tr("Begin everything again that failed or was cancelled")
                : tr("Nothing has failed that could be begun again"));
  Set(*remove_, anyDone,
      anyDone ? tr("Take everything that is done off the list")
              : tr("Nothing in the list is done"));
}

}  // namespace corvane
