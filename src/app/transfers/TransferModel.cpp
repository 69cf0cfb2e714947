#include "app/transfers/TransferModel.h"

#include <algorithm>
#include <utility>

#include "app/shared/ScreenText.h"
#include "app/transfers/TransferTexts.h"

namespace corvane {

TransferItem& TransferModel::Add(std::unique_ptr<TransferItem> item) {
  TransferItem& added = *item;
  connect(&added, &TransferItem::Restated, this, [this](RowState before, RowState now) {
    --Counter(before);
    ++Counter(now);
  });
  connect(&added, &TransferItem::Changed, this, &TransferModel::ItemChanged);
  beginInsertRows({}, Count(), Count());
  items_.push_back(std::move(item));
  ++Counter(added.Stands());
  endInsertRows();
  return added;
}

void TransferModel::Remove(int first, int count) {
  beginRemoveRows({}, first, first + count - 1);
  const auto begin = items_.begin() + first;
  for (auto item = begin; item != begin + count; ++item) {
    TransferItem* gone = item->release();
    --Counter(gone->Stands());
    gone->disconnect(this);
    gone->LetGo();
    gone->deleteLater();  // one of its signals may be the reason for this call
  }
  items_.erase(begin, begin + count);
  endRemoveRows();
}

void TransferModel::Move(int row, int by) {
  const int to = row + by;
  if (to < 0 || to >= Count()) return;
  beginMoveRows({}, row, row, {}, by > 0 ? to + 1 : to);
  std::swap(items_.at(static_cast<std::size_t>(row)), items_.at(static_cast<std::size_t>(to)));
  endMoveRows();
}

int TransferModel::RowOf(RowId id) const {
  const auto found = std::ranges::find(items_, id, [](const auto& item) { return item->Id(); });
  return found == items_.end() ? -1 : static_cast<int>(found - items_.begin());
}

void TransferModel::ItemChanged(TransferItem* item) {
  const auto found = std::ranges::find(items_, item, &std::unique_ptr<TransferItem>::get);
  if (found == items_.end()) return;
  const QModelIndex changed = index(static_cast<int>(found - items_.begin()));
  Q_EMIT dataChanged(changed, changed);
}

int TransferModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : Count();
}

QVariant TransferModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) return {};
  const TransferItem& item = At(index.row());
  const TransferTexts texts(item);
  switch (role) {
    case Qt::DisplayRole: return texts.Name();
    case Qt::AccessibleTextRole: return texts.Summary();
    case Qt::ToolTipRole: return Harmless(texts.Details());
    default: return {};
  }
}

}  // namespace corvane
