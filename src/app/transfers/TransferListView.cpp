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
constexpr int kSlowTickMilliseconds = 500;  // where nobody looks, or only seconds are counted
constexpr int kTicksPerText = 3;

QString TipOf(TransferAction action) {
  switch (action) {
    case TransferAction::None: break;
    case TransferAction::Cancel: return TransferListView::tr("Cancel this transfer");
    case TransferAction::Remove: return TransferListView::tr("Remove from the list");
    case TransferAction::Reveal: return TransferListView::tr("Show in its folder");
    case TransferAction::Pause: return TransferListView::tr("Pause this transfer");
    case TransferAction::Resume: return TransferListView::tr("Go on with this transfer");
    case TransferAction::Retry: return TransferListView::tr("Try what failed once more");
    case TransferAction::TryNow: return TransferListView::tr("Do not wait any longer");
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
  const bool runs = model_->RunningCount() > 0;
  if (!runs && model_->CountOf(RowState::Again) == 0) return ticker_.stop();
  const int interval = runs && isVisible() ? kTickMilliseconds : kSlowTickMilliseconds;
  if (!ticker_.isActive() || ticker_.interval() != interval) ticker_.start(interval);
}

// The pace of every row is measured, whether it is seen or not.
void TransferListView::Tick() {
  const bool texts = ticker_.interval() == kSlowTickMilliseconds || ++ticks_ % kTicksPerText == 0;
  for (int row = 0; row < model_->Count(); ++row) {
    TransferItem& item = model_->At(row);
    if (!item.Running() && item.Stands() != RowState::Again) continue;
    const bool changed = texts ? item.TakeChanged() : item.HasChanged();
    if (!changed || !isVisible()) continue;
    const QRect area = visualRect(model_->index(row));
    viewport()->update(texts ? area : TransferRow(item, area, fontMetrics()).Bar());
  }
  if (texts) Q_EMIT Moved();
}

void TransferListView::showEvent(QShowEvent* event) {
  QListView::showEvent(event);
  StartOrStopTicking();
}

void TransferListView::hideEvent(QHideEvent* event) {
  QListView::hideEvent(event);
  StartOrStopTicking();
}

// A row that only has the keys is not to look as if it were selected to who uses the pointer.
void TransferListView::keyPressEvent(QKeyEvent* event) {
  SetRinged(true);
  QListView::keyPressEvent(event);
}

void TransferListView::focusInEvent(QFocusEvent* event) {
  const Qt::FocusReason reason = event->reason();
  SetRinged(reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason);
  QListView::focusInEvent(event);
}

void TransferListView::SetRinged(bool ringed) {
  delegate_->SetRinged(ringed);
  viewport()->update();
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
  SetRinged(false);
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
  const bool link = action == TransferAction::Retry || action == TransferAction::TryNow;
  viewport()->setCursor(link ? Qt::PointingHandCursor : Qt::ArrowCursor);
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
