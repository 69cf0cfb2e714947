#include "app/browser/RowDrop.h"

#include <QDropEvent>
#include <QMimeData>
#include <QScrollBar>
#include <QTimerEvent>
#include <algorithm>
#include <utility>

#include "app/browser/DirListView.h"
#include "app/browser/DragData.h"

namespace corvane {
namespace {

/// The listing whose rows were dragged last: only one drag runs at a time.
const RowDrop*& Source() {
  static const RowDrop* source = nullptr;
  return source;
}

void Accept(QDropEvent& drag, bool accepted) {
  drag.setDropAction(accepted ? Qt::CopyAction : Qt::IgnoreAction);
  drag.setAccepted(accepted);
}

}  // namespace

RowDrop::RowDrop(DirListView& view) : QObject(&view), view_(view) {}

void RowDrop::Watch(QWidget* window) {
  if (window == window_) return;
  if (window_ != nullptr) window_->removeEventFilter(this);
  window_ = window;
  window->installEventFilter(this);
}

void RowDrop::Begin(std::vector<std::string> names) {
  names_ = std::move(names);
  Source() = this;
}

bool RowDrop::eventFilter(QObject* /*window*/, QEvent* event) {
  switch (event->type()) {
    case QEvent::DragEnter:
      if (!IsOwn(static_cast<QDropEvent&>(*event))) return false;
      // Whether there is a directory is seen at each move.
      Accept(static_cast<QDropEvent&>(*event), true);
      return true;
    case QEvent::DragMove: return Over(static_cast<QDropEvent&>(*event));
    case QEvent::Drop: return Drop(static_cast<QDropEvent&>(*event));
    case QEvent::DragLeave:
      StopScrolling();
      SetRow(-1);
      return false;
    default: return false;
  }
}

bool RowDrop::IsOwn(const QDropEvent& drag) const {
  return Source() == this && drag.mimeData()->hasFormat(DragData::kRows) && view_.IsReady();
}

bool RowDrop::TakesFiles(const QDropEvent& drag) const {
  const QMimeData& offer = *drag.mimeData();
  return view_.IsReady() && drag.source() == nullptr && !offer.hasFormat(DragData::kRows) &&
         offer.hasUrls() && drag.possibleActions().testFlag(Qt::CopyAction);
}

int RowDrop::DirectoryAt(const QDropEvent& drag) const {
  const QPoint place = view_.viewport()->mapFrom(window_, drag.position().toPoint());
  if (!view_.viewport()->rect().contains(place)) return -1;
  const QModelIndex index = view_.indexAt(place);
  if (!index.isValid()) return -1;
  const MWListItem& item = view_.Rows().At(index.row());
  if (item.Type() != kDirectory || item.IsDots()) return -1;
  const bool dragged = IsOwn(drag) && std::ranges::find(names_, item.Name()) != names_.end();
  return dragged ? -1 : index.row();
}

bool RowDrop::Over(QDropEvent& drag) {
  const bool own = IsOwn(drag);
  if (!own && !TakesFiles(drag)) return false;
  ScrollNear(drag);
  SetRow(DirectoryAt(drag));
  if (!own && row_ < 0) return false;
  Accept(drag, row_ >= 0);
  return true;
}

bool RowDrop::Drop(QDropEvent& drag) {
  StopScrolling();
  const bool own = IsOwn(drag);
  const int row = own || TakesFiles(drag) ? DirectoryAt(drag) : -1;
  SetRow(-1);
  if (own) Accept(drag, row >= 0);
  if (row < 0) return own;
  Accept(drag, true);
  const std::string directory = view_.Rows().At(row).Name();
  if (own) {
    Q_EMIT Moved(names_, directory);
  } else {
    Q_EMIT Dropped(*drag.mimeData(), directory);
  }
  return true;
}

void RowDrop::SetRow(int row) {
  const int before = std::exchange(row_, row);
  if (before != row) Q_EMIT RowChanged(before, row);
}

// A drag near the upper or lower edge scrolls, so that every directory can be reached.
void RowDrop::ScrollNear(const QDropEvent& drag) {
  constexpr int kEdge = 16;
  constexpr int kMilliseconds = 80;
  const QWidget& viewport = *view_.viewport();
  const int y = viewport.mapFrom(window_, drag.position().toPoint()).y();
  const bool inside = y >= 0 && y < viewport.height();
  const int lower = y >= viewport.height() - kEdge ? 1 : 0;
  step_ = !inside ? 0 : y < kEdge ? -1 : lower;
  if (step_ == 0) return StopScrolling();
  if (timer_ == 0) timer_ = startTimer(kMilliseconds);
}

void RowDrop::StopScrolling() {
  if (timer_ != 0) killTimer(std::exchange(timer_, 0));
}

void RowDrop::timerEvent(QTimerEvent* /*event*/) {
  QScrollBar& bar = *view_.verticalScrollBar();
  const int before = bar.value();
  bar.setValue(before + step_);
  if (bar.value() != before) SetRow(-1);
}

}  // namespace corvane
