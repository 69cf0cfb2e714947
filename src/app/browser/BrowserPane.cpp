#include "app/browser/BrowserPane.h"

#include <QCheckBox>
#include <QPushButton>
#include <QVBoxLayout>
#include <algorithm>

#include "app/browser/MWindow.h"
#include "app/shared/LookStyle.h"
#include "app/shared/Rule.h"
#include "app/shared/Symbols.h"
#include "app/shared/TransferView.h"
#include "settings/ProcessSettings.h"

namespace corvane {
namespace {

constexpr int kMargin = 16;
constexpr int kWidth = 240;

}  // namespace

BrowserPane::BrowserPane(QWidget* parent, TransferView* transfer, QWidget* info)
    : QWidget(parent),
      download_(new QPushButton(Symbol("download"), MWindow::tr("&Download"), this)),
      upload_(new QPushButton(Symbol("upload"), MWindow::tr("&Upload"), this)),
      sameConnection_(new QCheckBox(MWindow::tr("Use &this connection."), this)),
      transfer_(transfer) {
  download_->setObjectName("download");
  upload_->setObjectName("upload");
  SetPrimary(*download_);
  sameConnection_->setObjectName("SameCon");
  sameConnection_->setChecked(ProcessSettings::Get().useSameConnection);
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
  layout->setSpacing(8);
  layout->addWidget(download_);
  layout->addWidget(upload_);
  layout->addSpacing(4);
  layout->addWidget(sameConnection_);
  layout->addWidget(transfer_);
  layout->addSpacing(8);
  layout->addWidget(new Rule(Qt::Horizontal, this));
  layout->addSpacing(8);
  layout->addWidget(info);
  layout->addStretch();
  setFixedWidth(std::max(kWidth, sameConnection_->sizeHint().width() + 2 * kMargin));
  connect(download_, &QPushButton::clicked, this, &BrowserPane::DownloadPressed);
  connect(upload_, &QPushButton::clicked, this, &BrowserPane::UploadPressed);
}

bool BrowserPane::UsesSameConnection() const {
  return sameConnection_->isChecked();
}

void BrowserPane::SetUsable(bool canDownload, bool canUpload, const QString& why) {
  download_->setEnabled(canDownload);
  download_->setToolTip(canDownload ? QString() : why);
  upload_->setEnabled(canUpload);
  upload_->setToolTip(canUpload ? QString() : MWindow::tr("The connection is busy or not there."));
}

}  // namespace corvane
