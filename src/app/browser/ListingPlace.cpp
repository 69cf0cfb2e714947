#include "app/browser/ListingPlace.h"

#include <QItemSelection>
#include <QScrollBar>

#include "app/browser/DirListView.h"

namespace corvane {
namespace {

constexpr auto kKeepSelection = QItemSelectionModel::NoUpdate;

/// Selects the rows that `wanted` says, and makes `current` the current one, where it is a row.
void Select(DirListView& view, int current, const auto& wanted) {
  const DirListModel& rows = view.Rows();
  QItemSelection selection;
  for (int row = 0, end = 0; row < rows.ShownCount(); row = end + 1) {
    for (end = row; end < rows.ShownCount() && wanted(end);) ++end;
    if (end > row) {
      selection.append({rows.index(row, 0), rows.index(end - 1, DirListModel::kColumns - 1)});
    }
  }
  QItemSelectionModel& model = *view.selectionModel();
  if (current >= 0) model.setCurrentIndex(rows.index(current, DirListModel::kName), kKeepSelection);
  if (!selection.isEmpty()) model.select(selection, QItemSelectionModel::ClearAndSelect);
}

}  // namespace

ListingPlace ListingPlace::Of(const DirListView& view) {
  ListingPlace place;
  const DirListModel& rows = view.Rows();
  for (const int row : view.SelectedRows()) place.selected_.insert(rows.At(row).Name());
  const QModelIndex current = view.currentIndex();
  if (current.isValid()) place.current_ = rows.At(current.row()).Name();
  const QModelIndex top = view.indexAt({0, 0});
  if (top.isValid()) place.top_ = rows.At(top.row()).Name();
  place.scroll_ = view.verticalScrollBar()->value();
  return place;
}

void ListingPlace::Restore(DirListView& view) const {
  const DirListModel& rows = view.Rows();
  const int current = current_.empty() ? -1 : rows.Find(current_);
  Select(view, current, [&](int row) { return selected_.contains(rows.At(row).Name()); });
  const int top = top_.empty() ? -1 : rows.Find(top_);
  if (top >= 0 && top < rows.ShownCount()) {
    view.scrollTo(rows.index(top, DirListModel::kName), QAbstractItemView::PositionAtTop);
  } else {
    view.verticalScrollBar()->setValue(scroll_);
  }
}

ShownPlace ShownPlace::Of(const DirListView& view) {
  ShownPlace place;
  const DirListModel& rows = view.Rows();
  for (const int row : view.SelectedRows()) {
    const std::uint32_t id = rows.IdOf(row);
    if (id >= place.selected_.size()) place.selected_.resize(id + 1);
    place.selected_[id] = true;
  }
  const QModelIndex current = view.currentIndex();
  if (current.isValid()) place.current_ = rows.IdOf(current.row());
  return place;
}

void ShownPlace::Restore(DirListView& view) const {
  const DirListModel& rows = view.Rows();
  int current = -1;
  for (int row = 0; current_ >= 0 && current < 0 && row < rows.ShownCount(); ++row) {
    if (rows.IdOf(row) == current_) current = row;
  }
  Select(view, current, [&](int row) {
    const std::uint32_t id = rows.IdOf(row);
    return id < selected_.size() && selected_[id];
  });
  if (current >= 0) view.scrollTo(rows.index(current, DirListModel::kName));
}

}  // namespace corvane
