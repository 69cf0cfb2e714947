#include "app/program/TrustedList.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "app/shared/Alerts.h"
#include "app/shared/CertificateFacts.h"
#include "app/shared/HintLabel.h"
#include "app/shared/LookStyle.h"
#include "app/shared/ScreenText.h"

namespace corvane {
namespace {

constexpr int kNumber = Qt::UserRole;

/// Sorts dates as dates, and servers by name.
class Row : public QTreeWidgetItem {
 public:
  using QTreeWidgetItem::QTreeWidgetItem;
  bool operator<(const QTreeWidgetItem& other) const override {
    const int column = treeWidget()->sortColumn();
    const QVariant own = data(column, kNumber + 1);
    return own.isValid() ? own.toLongLong() < other.data(column, kNumber + 1).toLongLong()
                         : text(column).localeAwareCompare(other.text(column)) < 0;
  }
};

QString PlaceText(const KnownServers::Entry& server) {
  const QString host = ToText(server.host);
  return server.port == 21 ? host : QStringLiteral("%1:%2").arg(host).arg(server.port);
}

}  // namespace

TrustedList::TrustedList(const TrustedCertificates& trusted)
    : trusted_(trusted),
      servers_(trusted.list ? trusted.list() : std::vector<KnownServers::Entry>()),
      list_(new QTreeWidget(this)) {
  constexpr int kRows = 4;
  constexpr int kHeight = (kRows + 1) * LookStyle::kRowHeight + 2;
  list_->setObjectName("Trusted");
  list_->setAccessibleName(tr("Certificates that you trust"));
  list_->setRootIsDecorated(false);
  list_->setUniformRowHeights(true);
  list_->setAllColumnsShowFocus(true);
  list_->setFixedHeight(kHeight);
  list_->setHeaderLabels({tr("Server"), tr("Trusted since"), tr("SHA-256")});
  list_->headerItem()->setTextAlignment(1, Qt::AlignRight | Qt::AlignVCenter);
  for (std::size_t i = 0; i < servers_.size(); ++i) AddRow(i);
  list_->setSortingEnabled(true);
  list_->sortByColumn(0, Qt::AscendingOrder);
  QHeaderView* header = list_->header();
  header->setStretchLastSection(true);
  for (const int column : {0, 1}) list_->resizeColumnToContents(column);
  constexpr int kServer = 180;
  header->resizeSection(0, std::max(kServer, header->sectionSize(0)));
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins({});
  column->setSpacing(8);
  column->addWidget(list_);
  QWidget* buttons = MakeButtons();
  column->addWidget(buttons);
  auto* none = new HintLabel(tr("None yet. You are asked when a server shows one that this "
                                "computer does not know."),
                             this);
  column->addWidget(none);
  none->setHidden(!servers_.empty());
  for (QWidget* each : {static_cast<QWidget*>(list_), buttons}) each->setHidden(servers_.empty());
  connect(list_, &QTreeWidget::itemSelectionChanged, this, &TrustedList::SelectionChanged);
  connect(list_, &QTreeWidget::itemActivated, this, &TrustedList::ShowChosen);
  SelectionChanged();
}

QWidget* TrustedList::MakeButtons() {
  auto* whole = new QWidget(this);
  auto* row = new QHBoxLayout(whole);
  row->setContentsMargins({});
  row->setSpacing(8);
  show_ = new QPushButton(tr("S&how"), whole);
  remove_ = new QPushButton(tr("&Remove"), whole);
  show_->setObjectName("ShowTrusted");
  remove_->setObjectName("RemoveTrusted");
  connect(show_, &QPushButton::clicked, this, &TrustedList::ShowChosen);
  connect(remove_, &QPushButton::clicked, this, &TrustedList::RemoveChosen);
  for (QPushButton* button : {show_, remove_}) {
    button->setAutoDefault(true);
    row->addWidget(button);
  }
  row->addStretch();
  return whole;
}

void TrustedList::AddRow(std::size_t number) {
  const KnownServers::Entry& server = servers_[number];
  auto* row = new Row(list_);
  row->setText(0, PlaceText(server));
  row->setText(1, DayText(server.trusted.since));
  row->setTextAlignment(1, Qt::AlignRight | Qt::AlignVCenter);
  row->setData(1, kNumber + 1, static_cast<qlonglong>(server.trusted.since));
  row->setText(2, ShortFingerprint(server.trusted.certificate.sha256));
  row->setData(0, kNumber, static_cast<qulonglong>(number));
  row->setSizeHint(0, {0, LookStyle::kRowHeight});
}

const KnownServers::Entry* TrustedList::Chosen() const {
  const QList<QTreeWidgetItem*> rows = list_->selectedItems();
  return rows.isEmpty() ? nullptr : &servers_[rows.first()->data(0, kNumber).toULongLong()];
}

void TrustedList::SelectionChanged() {
  const bool any = Chosen() != nullptr;
  for (QPushButton* button : {show_, remove_}) {
    button->setEnabled(any);
    button->setToolTip(any ? QString() : tr("Select a certificate first."));
  }
}

void TrustedList::ShowChosen() {
  const KnownServers::Entry* server = Chosen();
  if (server == nullptr) return;
  const QString since = DayText(server->trusted.since);
  Alerts::Show(
      window(),
      {.icon = QMessageBox::Information,
       .title = CertificateTitle(server->host),
       .text = tr("You trust this certificate of %1 since %2.").arg(ToText(server->host), since),
       .buttons = {tr("&Close")},
       .subject = CertificateTitle(server->host),
       .facts = CertificateFacts(server->trusted.certificate),
       .fixedFact = 3});
}

void TrustedList::RemoveChosen() {
  const KnownServers::Entry* server = Chosen();
  if (server == nullptr) return;
  removed_.push_back(server);
  delete list_->selectedItems().first();
}

void TrustedList::Save() {
  for (const KnownServers::Entry* server : removed_) trusted_.remove(server->host, server->port);
  removed_.clear();
}

}  // namespace corvane
