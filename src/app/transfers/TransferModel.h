#pragma once

#include <QAbstractListModel>
#include <memory>
#include <vector>

#include "app/transfers/TransferItem.h"

namespace corvane {

/// The rows of the transfer list; owns them. GUI thread.
class TransferModel : public QAbstractListModel {
  Q_OBJECT

 public:
  using QAbstractListModel::QAbstractListModel;

  TransferItem& Add(std::unique_ptr<TransferItem> item);
  void Remove(int first, int count = 1);
  [[nodiscard]] int Count() const { return static_cast<int>(items_.size()); }
  [[nodiscard]] TransferItem& At(int row) const { return *items_.at(static_cast<size_t>(row)); }
  [[nodiscard]] int RunningCount() const { return running_; }

  [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;

 private:
  void ItemChanged(TransferItem* item);

  std::vector<std::unique_ptr<TransferItem>> items_;
  int running_ = 0;
};

}  // namespace corvane
