#include "app/browser/BrowserView.h"

#include <QHBoxLayout>
#include <QPushButton>
#include <QStackedWidget>
#include <QVBoxLayout>

#include "app/browser/BrowserPane.h"
#include "app/browser/BrowserToolBar.h"
#include "app/browser/ConnectingPage.h"
#include "app/browser/DirListView.h"
#include "app/browser/FilterLine.h"
#include "app/browser/InfoPane.h"
#include "app/browser/MWindow.h"
#include "app/browser/PathField.h"
#include "app/shared/LookStyle.h"
#include "app/shared/Rule.h"
#include "app/shared/SmallView.h"
#include "app/shared/StatusLine.h"
#include "app/shared/Strip.h"
#include "app/shared/Style.h"
#include "app/shared/TransferView.h"

namespace corvane {
namespace {

constexpr int kMargin = 8;  // around what stands above the listing

}  // namespace

BrowserView::BrowserView(QWidget* window, TransferView* transfer)
    : QWidget(window),
      bar_(new BrowserToolBar(this)),
      loss_(new Strip("cross-circle", Tone::Bad, this)),
      diagnose_(loss_->AddButton(MWindow::tr("What &Is Wrong?"))),
      again_(loss_->AddButton(MWindow::tr("&Connect Again"))),
      lossRoom_(new QWidget(this)),
      notices_(new QVBoxLayout),
      pages_(new QStackedWidget(this)),
      listing_(new DirListView(this)),
      filter_(new FilterLine(*listing_, this)),
      pane_(new BrowserPane(this, transfer, new InfoPane(*listing_, this))),
      connecting_(new ConnectingPage(this)),
      failure_(new FailurePage(this)),
      status_(new StatusLine(this)) {
  setObjectName("MainWindowView");
  Arrange();
  diagnose_->setObjectName("Diagnose");
  again_->setObjectName("ConnectAgain");
  SetPrimary(*again_);
  connect(again_, &QPushButton::clicked, this, &BrowserView::ConnectAgainPressed);
  connect(filter_, &FilterLine::OpenChanged, bar_, &BrowserToolBar::SetFilterShown);
  connect(listing_, &DirListView::CountChanged, this, &BrowserView::ShowCount);
  connect(listing_, &DirListView::SelectionChanged, this, &BrowserView::ShowCount);
  connect(connecting_, &ConnectingPage::CancelPressed, this, &BrowserView::CancelPressed);
  connect(failure_, &FailurePage::TryAgainPressed, this, &BrowserView::TryAgainPressed);
  connect(diagnose_, &QPushButton::clicked, this, &BrowserView::DiagnosePressed);
  connect(failure_, &FailurePage::DiagnosePressed, this, &BrowserView::DiagnosePressed);
  connect(failure_, &FailurePage::ClosePressed, this, &BrowserView::ClosePressed);
  listing_->setFocus();
}

QWidget* BrowserView::MakeBrowsingPage() {
  auto* page = new QWidget(this);
  auto* layout = new QHBoxLayout(page);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(0);
  layout->addWidget(listing_, 1);
  layout->addWidget(new Rule(Qt::Vertical, page));
  layout->addWidget(pane_);
  return page;
}

void BrowserView::Arrange() {
  auto* room = new QVBoxLayout(lossRoom_);
  room->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
  room->addWidget(loss_);
  lossRoom_->hide();
  pages_->addWidget(MakeBrowsingPage());
  pages_->addWidget(connecting_);
  pages_->addWidget(failure_);
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(0);
  layout->addWidget(bar_);
  layout->addWidget(new Rule(Qt::Horizontal, this));
  layout->addWidget(lossRoom_);
  layout->addLayout(notices_);
  layout->addWidget(filter_);
  layout->addWidget(pages_, 1);
  layout->addWidget(status_);
}

QSize BrowserView::sizeHint() const {
  constexpr QSize kUsual(864, 532);
  return kUsual.expandedTo(minimumSizeHint());
}

QSize BrowserView::minimumSizeHint() const {
  constexpr QSize kLeast(420, 410);
  return kLeast.expandedTo(QWidget::minimumSizeHint());
}

PathField& BrowserView::Path() {
  return bar_->Path();
}

TransferView& BrowserView::Transfer() {
  return pane_->Transfer();
}

const TransferView& BrowserView::Transfer() const {
  return pane_->Transfer();
}

void BrowserView::ShowListing() {
  if (ShowsListing()) return;
  pages_->setCurrentIndex(0);
  listing_->setFocus();
}

bool BrowserView::ShowsListing() const {
  return pages_->currentIndex() == 0;
}

void BrowserView::ShowConnecting(const QString& host) {
  HideLoss();
  connecting_->Begin(host);
  pages_->setCurrentWidget(connecting_);
}

void BrowserView::ShowFailure(const FailurePage::Failure& failure, const Site& site) {
  failure_->Show(failure, site);
  pages_->setCurrentWidget(failure_);
}

void BrowserView::ShowLoss(const QString& heading, const QString& reason) {
  loss_->Set(heading, reason);
  lossRoom_->show();
}

void BrowserView::ShowLossAgain() {
  lossRoom_->show();
}

void BrowserView::HideLoss() {
  lossRoom_->hide();
}

void BrowserView::ShowNotice(const QString& text) {
  auto* room = new QWidget(this);
  auto* layout = new QVBoxLayout(room);
  layout->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
  auto* notice = new Strip("info", Tone::Running, room);
  layout->addWidget(notice);
  notice->setObjectName("Notice");
  notice->Set(text, {});
  connect(notice->AddButton(MWindow::tr("&Got It")), &QPushButton::clicked, room,
          &QObject::deleteLater);
  notices_->addWidget(room);
}

void BrowserView::ClearListing() {
  listing_->ClearRows();
  ShowCount();
}

void BrowserView::ShowCount() {
  const Style& style = Style::InForce();
  const int shown = listing_->Rows().ShownCount();
  const SelectionSum sum = listing_->Sum();
  if (sum.Count() > 1) {
    QString figure = MWindow::tr("%1 of %2 selected").arg(sum.Count()).arg(shown);
    if (sum.files > 0) figure += ", " + style.FileSize(sum.bytes);
    return status_->Figure().SetText(figure);
  }
  SmallView& figure = status_->Figure();
  figure.SetText(listing_->Rows().EntryCount());
  if (free_ < 0) return;
  figure.SetText(figure.text() + ", " + MWindow::tr("%1 free").arg(style.FileSize(free_)));
}

void BrowserView::ShowFree(std::int64_t bytes) {
  free_ = bytes;
  ShowCount();
}

void BrowserView::ToggleFilter() {
  if (filter_->isHidden()) {
    filter_->Open();
  } else {
    filter_->Close();
  }
}

void BrowserView::CloseFilter() {
  filter_->Close();
}

void BrowserView::RemoveRow(const std::string& name) {
  const int row = listing_->Rows().Find(name);
  if (row < 0) return;
  listing_->Rows().Remove(row);
  ShowCount();
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

void BrowserView::SetUsable(bool ready, bool listingEnabled) {
  listing_->SetReady(ready);
  const bool selected = listing_->FirstSelected() >= 0;
  pane_->SetUsable(ready && selected, ready,
                   selected ? MWindow::tr("The connection is busy or not there.")
                            : MWindow::tr("Select something in the listing first."));
  Path().setEnabled(listingEnabled && ShowsListing());
}

void BrowserView::ShowEntry(const MWListItem& item) {
  if (item.IsDots()) return;
  DirListModel& rows = listing_->Rows();
  const int row = rows.Find(item.Name());
  if (row >= 0) {
    rows.Renew(row, item);
  } else {
    rows.Insert(item);
  }
  ShowCount();
}

void BrowserView::SetBusy(bool busy) {
  bar_->SetBusy(busy);
  status_->SetBusy(busy);
}

}  // namespace corvane
