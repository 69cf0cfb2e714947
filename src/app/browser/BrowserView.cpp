#include "app/browser/BrowserView.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>
#include <algorithm>
#include <ctime>

#include "app/browser/DirListView.h"
#include "app/browser/MWindow.h"
#include "app/shared/ScreenText.h"
#include "app/shared/SmallView.h"
#include "app/shared/TransferView.h"
#include "settings/ProcessSettings.h"

namespace corvane {
namespace {

std::tm LocalTimeNow() {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  return local;
}

}  // namespace

BrowserView::BrowserView(QWidget* window, TransferView* transfer)
    : QWidget(window),
      path_(new QLineEdit(this)),
      listing_(new DirListView(this)),
      count_(new SmallView(this)),
      sameConnection_(new QCheckBox(MWindow::tr("Use &this connection."), this)),
      transfer_(transfer),
      download_(new QPushButton(MWindow::tr("&Download"), this)),
      upload_(new QPushButton(MWindow::tr("&Upload"), this)) {
  setObjectName("MainWindowView");
  transfer_->setParent(this);
  MakeParts();
  Arrange();
  connect(download_, &QPushButton::clicked, this, &BrowserView::DownloadPressed);
  connect(upload_, &QPushButton::clicked, this, &BrowserView::UploadPressed);
  listing_->setFocus();
}

void BrowserView::MakeParts() {
  path_->setObjectName("Path");
  path_->setAccessibleName(MWindow::tr("Remote path"));
  sameConnection_->setObjectName("SameCon");
  sameConnection_->setChecked(ProcessSettings::Get().useSameConnection);
  download_->setObjectName("download");
  download_->setEnabled(false);
  upload_->setObjectName("upload");
}

QWidget* BrowserView::MakeStatusBox() {
  auto* box = new QGroupBox(MWindow::tr("Status"), this);
  box->setObjectName("Status");
  status_ = new QLabel(box);
  status_->setObjectName("StatusString");
  status_->setTextFormat(Qt::PlainText);
  status_->setAlignment(Qt::AlignCenter);
  status_->setWordWrap(true);
  status_->setMinimumHeight(2 * status_->fontMetrics().lineSpacing());
  auto* layout = new QVBoxLayout(box);
  layout->addWidget(status_);
  return box;
}

void BrowserView::Arrange() {
  auto* pathLabel = new QLabel(MWindow::tr("Path:"), this);
  pathLabel->setBuddy(path_);
  auto* side = new QVBoxLayout;
  side->setSpacing(8);
  side->addWidget(MakeStatusBox());
  side->addWidget(listing_->InfoBox());
  side->addWidget(sameConnection_);
  side->addWidget(transfer_);
  side->addStretch();
  side->addWidget(upload_);
  side->addWidget(download_);

  auto* pathRow = new QHBoxLayout;
  pathRow->setSpacing(6);
  pathRow->addWidget(pathLabel);
  pathRow->addWidget(path_);

  layout_ = new QGridLayout(this);
  layout_->setContentsMargins(10, 10, 10, 6);
  layout_->setHorizontalSpacing(12);
  layout_->setVerticalSpacing(6);
  layout_->addLayout(pathRow, 0, 0);
  layout_->addWidget(listing_, 1, 0);
  layout_->addLayout(side, 1, 1);
  layout_->addWidget(count_, 2, 0);
  layout_->setColumnStretch(0, 1);
  layout_->setColumnMinimumWidth(1, 150);
  setTabOrder(listing_, path_);
  setTabOrder(path_, sameConnection_);
  setTabOrder(sameConnection_, transfer_);
  setTabOrder(transfer_, upload_);
  setTabOrder(upload_, download_);
}

// The height is the layout's, for a transfer that is shown may need more than this.
void BrowserView::SetLeastHeight(int menuBar) {
  constexpr int kLeastHeight = 440;
  const auto height = [this](int column) {
    return layout_->itemAtPosition(1, column)->minimumSize().height();
  };
  const int others = layout_->minimumSize().height() - std::max(height(0), height(1));
  layout_->setRowMinimumHeight(1, kLeastHeight - menuBar - others);
}

bool BrowserView::UsesSameConnection() const {
  return sameConnection_->isChecked();
}

// A label's accessible name stands in for its text, so it holds the text too.
void BrowserView::ShowStatus(const QString& text) {
  status_->setText(text);
  status_->setToolTip(Harmless(text));
  status_->setAccessibleName(MWindow::tr("Status: %1").arg(text));
}

void BrowserView::ShowPath(const QString& path) {
  if (!path_->hasFocus() || !path_->isModified()) path_->setText(path);
}

void BrowserView::ClearListing() {
  listing_->clearSelection();
  listing_->Rows().Clear();
  count_->SetText(0);
}

void BrowserView::ShowCount(std::size_t count) {
  count_->SetText(static_cast<int>(count));
}

void BrowserView::RemoveRow(const std::string& name) {
  const int row = listing_->Rows().Find(name);
  if (row < 0) return;
  listing_->Rows().Remove(row);
  count_->SetText(count_->Count() - 1);
}

void BrowserView::RenameRow(const std::string& from, const std::string& to) {
  if (from == to || listing_->Rows().Find(from) < 0) return;
  // A name with a way in it has moved the entry out of this directory.
  if (to.find('/') != std::string::npos) return RemoveRow(from);
  RemoveRow(to);
  listing_->Rows().Rename(listing_->Rows().Find(from), to);
}

void BrowserView::ChangeValues(const std::string& name, std::int64_t size) {
  const int row = listing_->Rows().Find(name);
  if (row >= 0 && listing_->Rows().At(row).Type() == kLink) listing_->ChangeValues(row, size);
}

void BrowserView::ShowUploaded(const std::string& name, bool isFile, std::int64_t size) {
  const int row = listing_->Rows().Find(name);
  if (row < 0) {
    fileStruct entry;
    entry.name = name;
    entry.type = isFile ? kFile : kDirectory;
    entry.permissions = isFile ? "-r--r--r--" : "dr-xr--r--";
    entry.size = isFile ? size : kDirectorySize;
    entry.time = LocalTimeNow();
    listing_->InsertItem(entry, name);
    count_->SetText(count_->Count() + 1);
  } else if (row > 1 && isFile) {
    listing_->Rows().SetSizeAndTime(row, size, LocalTimeNow());
  }
}

void BrowserView::SetUsable(bool ready, bool listingEnabled) {
  const int row = listing_->FirstSelected();
  listing_->SetReady(ready);
  upload_->setEnabled(ready);
  download_->setEnabled(ready && row >= 0 && !listing_->Rows().At(row).IsDots());
  path_->setEnabled(listingEnabled);
}

}  // namespace corvane
