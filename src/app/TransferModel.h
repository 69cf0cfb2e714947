#pragma once

#include <QAbstractListModel>
#include <memory>
#include <vector>

#include "app/TransferItem.h"

namespace corvane {

/// The rows of the transfer list; owns them. GUI thread.
class TransferModel : public QAbstractListModel {
  Q_OBJECT

 public:
  using QAbstractListModel::QAbstractListModel;

  TransferItem& Add(std::unique_ptr<TransferItem> item);
  void Remove(int row);
  [[nodiscard]] int Count() const { return static_cast<int>(items_.size()); }
  [[nodiscard]] TransferItem& At(int row) const { return *items_.at(static_cast<size_t>(row)); }
  [[nodiscard]] bool AnyRunning() const;

  [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;

 private:
  void ItemChanged(TransferItem* item);

  std::vector<std::unique_ptr<TransferItem>> items_;
};

}  // namespace corvane
