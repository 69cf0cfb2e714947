#include "app/transfers/TransferListView.h"

#include <QAccessible>
#include <QContextMenuEvent>
#include <QHelpEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QToolTip>
#include <algorithm>
#include <utility>

#include "app/shared/EmptyState.h"
#include "app/transfers/TransferCommands.h"
#include "app/transfers/TransferDelegate.h"

namespace corvane {
namespace {

constexpr int kTickMilliseconds = 33;
constexpr int kTicksPerText = 3;

QString TipOf(TransferAction action) {
  switch (action) {
    case TransferAction::None: break;
    case TransferAction::Cancel: return TransferListView::tr("Cancel this transfer");
    case TransferAction::Remove: return TransferListView::tr("Remove from the list");
    case TransferAction::Reveal: return TransferListView::tr("Show in its folder");
    case TransferAction::Retry: return TransferListView::tr("Begin again");
    case TransferAction::Toggle: return TransferListView::tr("Show or hide what failed");
  }
  return {};
}

}  // namespace

TransferListView::TransferListView(QWidget* parent)
    : QListView(parent), model_(new TransferModel(this)), delegate_(new TransferDelegate(this)) {
  setObjectName("File Status List");
  setAccessibleName(tr("Transfers"));
  setModel(model_);
  setItemDelegate(delegate_);
  setSelectionMode(QAbstractItemView::ExtendedSelection);
  setEditTriggers(QAbstractItemView::NoEditTriggers);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
  setFrameShape(QFrame::NoFrame);
  setMouseTracking(true);
  ticker_.setInterval(kTickMilliseconds);
  connect(&ticker_, &QTimer::timeout, this, &TransferListView::Tick);
  scroller_.setSingleShot(true);
  connect(&scroller_, &QTimer::timeout, this, &QAbstractItemView::scrollToBottom);
  for (const auto signal : {&QAbstractItemModel::rowsInserted, &QAbstractItemModel::rowsRemoved}) {
    connect(model_, signal, this, &TransferListView::StartOrStopTicking);
  }
  connect(model_, &QAbstractItemModel::dataChanged, this, &TransferListView::StartOrStopTicking);
  connect(model_, &QAbstractItemModel::dataChanged, this, &TransferListView::Announce);
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
    if (!texts && item.HasChanged()) {
      viewport()->update(TransferRow(item, area, fontMetrics()).Bar());
    }
  }
  if (texts) Q_EMIT Moved();
}

// A row that has got another state is told to those who do not see it.
void TransferListView::Announce(const QModelIndex& index) {
  QAccessibleEvent event(this, QAccessible::NameChanged);
  event.setChild(index.row());
  QAccessible::updateAccessibility(&event);
}

void TransferListView::paintEvent(QPaintEvent* event) {
  delegate_->SetRegion(event->region());
  QListView::paintEvent(event);
  if (model_->Count() > 0) return;
  QPainter painter(viewport());
  const EmptyState empty{"transfers", tr("No transfers"),
                         tr("Downloads and uploads appear here. Drag files onto a browser window "
                            "to upload them.")};
  empty.Paint(painter, viewport()->rect(), palette());
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
  const int first = FirstSelected();
  if (first < 0) return new QMenu(this);
  return TransferCommands::MakePopUp(this, {.row = &model_->At(first)},
                                     [this](std::uint32_t code) { Q_EMIT Requested(code); });
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

TransferAction TransferListView::ActionAt(const QPoint& point) const {
  const QModelIndex index = indexAt(point);
  if (!index.isValid()) return TransferAction::None;
  return TransferRow(model_->At(index.row()), visualRect(index), fontMetrics()).ActionAt(point);
}

// What is pressed on a part of a row that does something leaves the selection alone.
void TransferListView::mousePressEvent(QMouseEvent* event) {
  pressed_ = event->button() == Qt::LeftButton ? ActionAt(event->pos()) : TransferAction::None;
  pressedRow_ = indexAt(event->pos());
  if (pressed_ == TransferAction::None) QListView::mousePressEvent(event);
}

void TransferListView::mouseReleaseEvent(QMouseEvent* event) {
  const TransferAction pressed = std::exchange(pressed_, TransferAction::None);
  if (pressed == TransferAction::None) return QListView::mouseReleaseEvent(event);
  if (pressedRow_ != indexAt(event->pos()) || pressed != ActionAt(event->pos())) return;
  Q_EMIT Acted(pressedRow_.row(), pressed);
}

void TransferListView::mouseMoveEvent(QMouseEvent* event) {
  Hover(event->pos());
  if (pressed_ == TransferAction::None) QListView::mouseMoveEvent(event);
}

void TransferListView::mouseDoubleClickEvent(QMouseEvent* event) {
  if (ActionAt(event->pos()) != TransferAction::None) return mousePressEvent(event);
  QListView::mouseDoubleClickEvent(event);
  const QModelIndex index = indexAt(event->pos());
  if (index.isValid() && event->button() == Qt::LeftButton) {
    Q_EMIT Acted(index.row(), TransferRow::MainOf(model_->At(index.row())));
  }
}

void TransferListView::Hover(const QPoint& point) {
  const TransferAction action = ActionAt(point);
  delegate_->SetHovered(indexAt(point), action);
  viewport()->setCursor(action == TransferAction::Retry ? Qt::PointingHandCursor : Qt::ArrowCursor);
  viewport()->update(visualRect(indexAt(point)));
}

bool TransferListView::viewportEvent(QEvent* event) {
  if (event->type() == QEvent::Leave) {
    delegate_->SetHovered({}, TransferAction::None);
    viewport()->update();
  }
  if (event->type() == QEvent::ToolTip) {
    const auto* help = static_cast<QHelpEvent*>(event);
    const QString tip = TipOf(ActionAt(help->pos()));
    if (!tip.isEmpty()) {
      QToolTip::showText(help->globalPos(), tip, viewport());
      return true;
    }
  }
  return QListView::viewportEvent(event);
}

}  // namespace corvane
