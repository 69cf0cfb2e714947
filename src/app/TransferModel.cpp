#include "app/TransferModel.h"

#include <algorithm>
#include <utility>

#include "app/Text.h"

namespace corvane {

TransferItem& TransferModel::Add(std::unique_ptr<TransferItem> item) {
  TransferItem& added = *item;
  connect(&added, &TransferItem::Changed, this, &TransferModel::ItemChanged);
  beginInsertRows({}, Count(), Count());
  items_.push_back(std::move(item));
  endInsertRows();
  return added;
}

void TransferModel::Remove(int row) {
  beginRemoveRows({}, row, row);
  TransferItem* gone = items_[static_cast<size_t>(row)].release();
  items_.erase(items_.begin() + row);
  gone->LetGo();
  gone->deleteLater();  // its signal may be the one in hand
  endRemoveRows();
}

bool TransferModel::AnyRunning() const {
  return std::ranges::any_of(items_, [](const auto& item) { return item->Running(); });
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
  switch (role) {
    case Qt::DisplayRole: return item.Label();
    case Qt::AccessibleTextRole: return item.Summary();
    case Qt::ToolTipRole:
      return Harmless(item.Failed() ? item.FailureText() : item.TargetTitle() + item.TargetPath());
    default: return {};
  }
}

}  // namespace corvane
