#pragma once

#include <QAbstractListModel>
#include <array>
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
  /// Moves a row up (-1) or down (1).
  void Move(int row, int by);
  /// -1 where there is none of that number.
  [[nodiscard]] int RowOf(RowId id) const;
  [[nodiscard]] int Count() const { return static_cast<int>(items_.size()); }
  [[nodiscard]] TransferItem& At(int row) const { return *items_.at(static_cast<size_t>(row)); }
  /// How many rows stand so.
  [[nodiscard]] int CountOf(RowState state) const {
    return counts_.at(static_cast<std::size_t>(state));
  }
  [[nodiscard]] int RunningCount() const { return CountOf(RowState::Running); }

  [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;

 private:
  void ItemChanged(TransferItem* item);
  int& Counter(RowState state) { return counts_.at(static_cast<std::size_t>(state)); }

  std::vector<std::unique_ptr<TransferItem>> items_;
  std::array<int, 7> counts_{};
};

}  // namespace corvane
