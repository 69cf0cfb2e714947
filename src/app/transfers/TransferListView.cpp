#include "app/transfers/TransferListView.h"

#include <QContextMenuEvent>
#include <QMenu>
#include <QPaintEvent>
#include <algorithm>

#include "app/transfers/TransferDelegate.h"

namespace corvane {
namespace {

constexpr int kTickMilliseconds = 33;
constexpr int kTicksPerText = 3;

}  // namespace

TransferListView::TransferListView(QWidget* parent)
    : QListView(parent), model_(new TransferModel(this)), delegate_(new TransferDelegate(this)) {
  setObjectName("File Status List");
  setAccessibleName(tr("Transfers"));
  setModel(model_);
  setItemDelegate(delegate_);
  setUniformItemSizes(true);
  setSelectionMode(QAbstractItemView::ExtendedSelection);
  setEditTriggers(QAbstractItemView::NoEditTriggers);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
  setFrameShape(QFrame::NoFrame);
  viewport()->setBackgroundRole(QPalette::Window);
  ticker_.setInterval(kTickMilliseconds);
  connect(&ticker_, &QTimer::timeout, this, &TransferListView::Tick);
  scroller_.setSingleShot(true);
  connect(&scroller_, &QTimer::timeout, this, &QAbstractItemView::scrollToBottom);
  for (const auto signal : {&QAbstractItemModel::rowsInserted, &QAbstractItemModel::rowsRemoved}) {
    connect(model_, signal, this, &TransferListView::StartOrStopTicking);
  }
  connect(model_, &QAbstractItemModel::dataChanged, this, &TransferListView::StartOrStopTicking);
}

void TransferListView::StartOrStopTicking() {
  if (model_->RunningCount() == 0) {
    ticker_.stop();
  } else if (!ticker_.isActive()) {
    ticker_.start();
  }
}

void TransferListView::Tick() {
  if (!isVisible()) return;
  const QModelIndex top = indexAt(viewport()->rect().topLeft());
  if (!top.isValid()) return;
  const bool texts = ++ticks_ % kTicksPerText == 0;
  for (int row = top.row(); row < model_->Count(); ++row) {
    const QRect area = visualRect(model_->index(row));
    if (area.top() > viewport()->height()) break;
    TransferItem& item = model_->At(row);
    if (texts && item.TakeChanged()) viewport()->update(area);
    if (!texts && item.HasChanged()) viewport()->update(TransferDelegate::BarArea(area));
  }
}

void TransferListView::paintEvent(QPaintEvent* event) {
  delegate_->SetRegion(event->region());
  QListView::paintEvent(event);
}

void TransferListView::ShowLastSoon() {
  scroller_.start(0);
}

std::vector<int> TransferListView::SelectedRows() const {
  std::vector<int> rows;
  const QModelIndexList selected = selectionModel()->selectedIndexes();
  for (const QModelIndex& index : selected) rows.push_back(index.row());
  std::ranges::sort(rows);
  return rows;
}

int TransferListView::FirstSelected() const {
  const QItemSelection selection = selectionModel()->selection();
  int first = -1;
  for (const QItemSelectionRange& range : selection) {
    if (first < 0 || range.top() < first) first = range.top();
  }
  return first;
}

int TransferListView::LastSelected() const {
  const QItemSelection selection = selectionModel()->selection();
  int last = -1;
  for (const QItemSelectionRange& range : selection) last = std::max(last, range.bottom());
  return last;
}

QMenu* TransferListView::SetupPopUpMenu() {
  auto* menu = new QMenu(this);
  menu->setObjectName("PopUpMenu");
  const int first = FirstSelected();
  if (first < 0) return menu;
  const TransferItem& item = model_->At(first);
  const auto add = [&](const QString& text, const Message& message, bool enabled) {
    QAction* action = menu->addAction(text);
    action->setEnabled(enabled);
    connect(action, &QAction::triggered, this, [this, message] { Q_EMIT Requested(message); });
  };
  const QString key = QKeySequence("Ctrl+.").toString(QKeySequence::NativeText);
  add(tr("Cancel Transfer") + '\t' + key, Message("CNCL"_what), item.Running());
  add(tr("Remove Item"), Message("REMI"_what), !item.Running());
  if (!item.IsDownload()) return menu;
  menu->addSeparator();
  Message reveal("_RRC"_what);
  reveal.AddString("refs", item.LocalPath());
  add(tr("Reveal in Tracker"), reveal, true);
  return menu;
}

void TransferListView::contextMenuEvent(QContextMenuEvent* event) {
  const bool byKey = event->reason() == QContextMenuEvent::Keyboard;
  const QModelIndex index = byKey ? currentIndex() : indexAt(event->pos());
  if (!index.isValid()) return;
  if (!selectionModel()->isSelected(index)) {
    selectionModel()->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect);
  }
  QMenu* menu = SetupPopUpMenu();
  menu->setAttribute(Qt::WA_DeleteOnClose);
  menu->popup(byKey ? viewport()->mapToGlobal(visualRect(index).center()) : event->globalPos());
}

}  // namespace corvane
