#include "app/TransferListView.h"

#include <QContextMenuEvent>
#include <QMenu>
#include <algorithm>

#include "app/TransferDelegate.h"

namespace corvane {
namespace {

constexpr int kTickMilliseconds = 33;

}  // namespace

TransferListView::TransferListView(QWidget* parent)
    : QListView(parent), model_(new TransferModel(this)) {
  setObjectName("File Status List");
  setAccessibleName(tr("Transfers"));
  setModel(model_);
  setItemDelegate(new TransferDelegate(this));
  setUniformItemSizes(true);
  setSelectionMode(QAbstractItemView::ExtendedSelection);
  setEditTriggers(QAbstractItemView::NoEditTriggers);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
  setFrameShape(QFrame::NoFrame);
  viewport()->setBackgroundRole(QPalette::Window);
  ticker_.setInterval(kTickMilliseconds);
  connect(&ticker_, &QTimer::timeout, this, &TransferListView::Tick);
  for (const auto signal : {&QAbstractItemModel::rowsInserted, &QAbstractItemModel::rowsRemoved}) {
    connect(model_, signal, this, &TransferListView::StartOrStopTicking);
  }
  connect(model_, &QAbstractItemModel::dataChanged, this, &TransferListView::StartOrStopTicking);
}

void TransferListView::StartOrStopTicking() {
  if (!model_->AnyRunning()) {
    ticker_.stop();
  } else if (!ticker_.isActive()) {
    ticker_.start();
  }
}

void TransferListView::Tick() {
  if (!isVisible()) return;
  const QModelIndex top = indexAt(viewport()->rect().topLeft());
  if (!top.isValid()) return;
  for (int row = top.row(); row < model_->Count(); ++row) {
    const QRect area = visualRect(model_->index(row));
    if (area.top() > viewport()->height()) break;
    if (model_->At(row).TakeChanged()) viewport()->update(area);
  }
}

std::vector<int> TransferListView::SelectedRows() const {
  std::vector<int> rows;
  const QModelIndexList selected = selectionModel()->selectedIndexes();
  for (const QModelIndex& index : selected) rows.push_back(index.row());
  std::ranges::sort(rows);
  return rows;
}

QMenu* TransferListView::SetupPopUpMenu() {
  auto* menu = new QMenu(this);
  menu->setObjectName("PopUpMenu");
  const std::vector<int> rows = SelectedRows();
  const bool running = !rows.empty() && model_->At(rows.front()).Running();
  const auto add = [&](const QString& text, std::uint32_t what, bool enabled) {
    QAction* action = menu->addAction(text);
    action->setEnabled(enabled);
    connect(action, &QAction::triggered, this, [this, what] { Q_EMIT Requested(Message(what)); });
  };
  add(tr("Cancel Transfer") + "\tCtrl+.", "CNCL"_what, running);
  add(tr("Remove Item"), "REMI"_what, !running);
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

void TransferListView::selectionChanged(const QItemSelection& selected,
                                        const QItemSelection& deselected) {
  QListView::selectionChanged(selected, deselected);
  Q_EMIT SelectionChanged();
}

}  // namespace corvane
