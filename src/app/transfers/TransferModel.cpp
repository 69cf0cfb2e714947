#include "app/transfers/TransferModel.h"

#include <algorithm>
#include <utility>

#include "app/shared/ScreenText.h"
#include "app/transfers/TransferTexts.h"

namespace corvane {

TransferItem& TransferModel::Add(std::unique_ptr<TransferItem> item) {
  TransferItem& added = *item;
  connect(&added, &TransferItem::Begun, this, [this] { ++running_; });
  connect(&added, &TransferItem::Ended, this, [this] { --running_; });
  connect(&added, &TransferItem::Changed, this, &TransferModel::ItemChanged);
  beginInsertRows({}, Count(), Count());
  items_.push_back(std::move(item));
  ++running_;
  endInsertRows();
  return added;
}

void TransferModel::Remove(int first, int count) {
  beginRemoveRows({}, first, first + count - 1);
  const auto begin = items_.begin() + first;
  for (auto item = begin; item != begin + count; ++item) {
    TransferItem* gone = item->release();
    if (gone->Running()) --running_;
    gone->disconnect(this);
    gone->LetGo();
    gone->deleteLater();  // one of its signals may be the reason for this call
  }
  items_.erase(begin, begin + count);
  endRemoveRows();
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
