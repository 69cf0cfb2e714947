#include "app/transfers/TransferPane.h"

#include <QLabel>
#include <QPushButton>
#include <QShortcut>
#include <QVBoxLayout>
#include <utility>

#include "app/shared/ScreenText.h"
#include "app/transfers/MyStatusBar.h"
#include "app/transfers/TransferTexts.h"

namespace corvane {
namespace {

constexpr int kTickMilliseconds = 33;
constexpr int kStayMilliseconds = 4000;

/// A text that is unchanged costs nothing.
void Show(QLabel* label, const QString& text) {
  if (label->text() != text) label->setText(text);
}

}  // namespace

TransferPane::TransferPane(QWidget* parent)
    : TransferView(parent),
      direction_(MakeLabel("FileDownloadV", tr("Direction"))),
      file_(MakeLabel("FileName", tr("File"))),
      rate_(MakeLabel("BPSECSVIEW", tr("Rate"))),
      bar_(new MyStatusBar(this)),
      button_(new QPushButton(this)),
      cancelKey_(new QShortcut(QKeySequence("Ctrl+."), this)) {
  rate_->setAlignment(Qt::AlignRight);
  button_->setObjectName("cancelTransfer");
  setFocusProxy(button_);
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(3);
  for (QWidget* part : std::initializer_list<QWidget*>{direction_, file_, rate_, bar_, button_}) {
    layout->addWidget(part);
  }
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

QLabel* TransferPane::MakeLabel(const char* name, const QString& accessible) {
  auto* label = new QLabel(this);
  label->setObjectName(name);
  label->setAccessibleDescription(accessible);
  label->setTextFormat(Qt::PlainText);
  label->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
  return label;
}

void TransferPane::Begin(transferStruct description, TransferListener listener,
                         const MakeWorker& make) {
  hideLater_.stop();
  bar_->SetItem(nullptr);
  item_ = std::make_unique<TransferItem>(std::move(description), std::move(listener));
  bar_->SetItem(item_.get());
  connect(item_.get(), &TransferItem::Changed, this, &TransferPane::Refresh);
  connect(item_.get(), &TransferItem::Ended, this, &TransferPane::Ended);
  connect(item_.get(), &TransferItem::Settled, this, [this](TransferItem* settled) {
    setToolTip(Harmless(TransferTexts(*settled).Details()));
    button_->setEnabled(true);
    const bool seen = settled->WasCancelled() || (settled->Finished() && !settled->HasNotes());
    if (seen) hideLater_.start();
    Q_EMIT Settled(settled->News());
  });
  button_->setText(tr("Cancel"));
  button_->setEnabled(true);
  cancelKey_->setEnabled(true);
  setToolTip(Harmless(TransferTexts(*item_).Details()));
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

void TransferPane::Tick() {
  if (item_->TakeChanged()) Refresh();
}

void TransferPane::Refresh() {
  Show(direction_, item_->IsDownload() ? tr("Download: ") : tr("Upload: "));
  const TransferTexts texts(*item_);
  Show(rate_, texts.RateText());
  const QString text = item_->Failed() ? texts.FailureLine() : texts.FileName();
  const QString count = item_->Failed() ? QString() : texts.CountText();
  const QFontMetrics metrics = file_->fontMetrics();
  const int room = file_->width() - metrics.horizontalAdvance(count);
  Show(file_, metrics.elidedText(text, Qt::ElideRight, room) + count);
  bar_->update();
}

void TransferPane::Ended() {
  ticker_.stop();
  cancelKey_->setEnabled(false);
  button_->setText(tr("Clear"));
  button_->setEnabled(false);
}

void TransferPane::ButtonPressed() {
  if (Running()) {
    item_->Cancel();
  } else {
    hide();
  }
}

}  // namespace corvane
