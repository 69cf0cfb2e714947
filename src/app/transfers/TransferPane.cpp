#include "app/transfers/TransferPane.h"

#include <QLabel>
#include <QPushButton>
#include <QShortcut>
#include <QVBoxLayout>
#include <utility>

#include "app/shared/ElidedLabel.h"
#include "app/shared/ScreenText.h"
#include "app/shared/Style.h"
#include "app/transfers/MyStatusBar.h"
#include "app/transfers/TransferTexts.h"

namespace corvane {
namespace {

constexpr int kTickMilliseconds = 33;
constexpr int kStayMilliseconds = 4000;
constexpr int kGap = 8;

/// A text that is unchanged costs nothing.
void Show(QLabel* label, const QString& text) {
  if (label->text() != text) label->setText(text);
}

}  // namespace

TransferPane::TransferPane(QWidget* parent)
    : TransferView(parent),
      direction_(new QLabel(this)),
      file_(MakeLabel("FileName", tr("File"), Qt::ElideMiddle)),
      rate_(MakeLabel("BPSECSVIEW", tr("Rate"), Qt::ElideRight)),
      bar_(new MyStatusBar(this)),
      button_(new QPushButton(this)),
      cancelKey_(new QShortcut(QKeySequence("Ctrl+."), this)) {
  direction_->setObjectName("FileDownloadV");
  direction_->setAccessibleDescription(tr("Direction"));
  rate_->SetSecondary(true);
  button_->setObjectName("cancelTransfer");
  setFocusProxy(button_);
  auto* names = new QHBoxLayout;
  names->setSpacing(0);
  names->addWidget(direction_);
  names->addWidget(file_, 1);
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(kGap);
  layout->addLayout(names);
  layout->addWidget(bar_);
  layout->addWidget(rate_);
  layout->addWidget(button_);
  ticker_.setInterval(kTickMilliseconds);
  connect(&ticker_, &QTimer::timeout, this, &TransferPane::Tick);
  hideLater_.setSingleShot(true);
  hideLater_.setInterval(kStayMilliseconds);
  connect(&hideLater_, &QTimer::timeout, this, &QWidget::hide);
  connect(button_, &QPushButton::clicked, this, &TransferPane::ButtonPressed);
  connect(cancelKey_, &QShortcut::activated, this, &TransferPane::ButtonPressed);
  cancelKey_->setEnabled(false);
  hide();
}

TransferPane::~TransferPane() = default;

ElidedLabel* TransferPane::MakeLabel(const char* name, const QString& accessible,
                                     Qt::TextElideMode elide) {
  auto* label = new ElidedLabel(this, elide);
  label->setObjectName(name);
  label->setAccessibleDescription(accessible);
  label->setTextFormat(Qt::PlainText);
  return label;
}

void TransferPane::Begin(transferStruct description, TransferListener listener,
                         const MakeWorker& make) {
  hideLater_.stop();
  bar_->SetItem(nullptr);
  item_ = std::make_unique<TransferItem>(std::move(description), std::move(listener));
  bar_->SetItem(item_.get());
  item_->SetStanding({.state = RowState::Running});
  connect(item_.get(), &TransferItem::Changed, this, &TransferPane::Refresh);
  connect(item_.get(), &TransferItem::Settled, this, &TransferPane::ItemSettled);
  button_->setText(tr("Cancel"));
  button_->setEnabled(true);
  cancelKey_->setEnabled(true);
  SetTip(*this, TransferTexts(*item_).Details());
  Refresh();
  show();
  ticker_.start();
  item_->Start(make);
}

void TransferPane::LetGo() {
  ticker_.stop();
  if (item_ == nullptr) return;
  item_->disconnect(this);
  item_->LetGo();
}

// What was cancelled and finished all the same is done.
void TransferPane::ItemSettled(TransferItem* item, TransferEnd end) {
  if (end == TransferEnd::Finished) {
    item->SetStanding({.state = RowState::Done});
  } else if (item->Running()) {
    item->SetStanding(
        {.state = end == TransferEnd::Cancelled ? RowState::Cancelled : RowState::Failed});
  }
  Ended();
  Refresh();
  SetTip(*this, TransferTexts(*item).Details());
  button_->setEnabled(true);
  const bool seen = item->WasCancelled() || (item->Finished() && !item->HasNotes());
  if (seen) hideLater_.start();
  Q_EMIT Settled(item->News());
}

void TransferPane::Tick() {
  if (item_->TakeChanged()) Refresh();
}

void TransferPane::Refresh() {
  const Style& style = Style::InForce();
  const TransferTexts texts(*item_);
  const QString direction = style.DirectionOf(item_->IsDownload());
  Show(direction_, direction);
  direction_->setHidden(direction.isEmpty());
  Show(file_, item_->Failed() ? texts.FailureLine() : texts.FileWithCount());
  Show(rate_, style.PaceOf(texts.Facts()));
  bar_->Refresh();
}

void TransferPane::Ended() {
  ticker_.stop();
  cancelKey_->setEnabled(false);
  button_->setText(tr("Clear"));
  button_->setEnabled(false);
}

void TransferPane::ButtonPressed() {
  if (Running()) {
    item_->Stop();
    item_->SetStanding({.state = RowState::Cancelled});
    Ended();
  } else {
    hide();
  }
}

}  // namespace corvane
