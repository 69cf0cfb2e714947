#pragma once

#include <QAbstractItemModel>
#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

#include "app/browser/MWListItem.h"

namespace corvane {

/// The rows of one listing, in the order shown. GUI thread.
class DirListModel : public QAbstractItemModel {
  Q_OBJECT

 public:
  enum Column { kIcon, kName, kSize, kDate, kColumns };

  using QAbstractItemModel::QAbstractItemModel;

  [[nodiscard]] int Count() const { return static_cast<int>(order_.size()); }
  [[nodiscard]] const MWListItem& At(int row) const;

  void Clear();
  void Append(std::vector<MWListItem> items);
  void Insert(int row, MWListItem item);
  void Remove(int row);
  void Rename(int row, const std::string& name);
  /// A link's row becomes that of a file.
  void BecomeFile(int row, std::int64_t size);
  void SetSizeAndTime(int row, std::int64_t size, const std::tm& time);
  /// Disabled rows are shown grey.
  void SetEnabledAll(bool enabled);

  /// The row whose name is exactly `name`; -1 when there is none.
  [[nodiscard]] int Find(std::string_view name) const;
  /// The first row whose name begins with `prefix`, whatever the case; -1 when there is none.
  [[nodiscard]] int FindItem(std::string_view prefix) const;
  /// Where a new name belongs in name order, below the two leading rows.
  [[nodiscard]] int PlaceFor(std::string_view name) const;

  /// Sorts by name, size or date; "." and ".." lead in either direction.
  void sort(int column, Qt::SortOrder order) override;

  [[nodiscard]] QModelIndex index(int row, int column,
                                  const QModelIndex& parent = {}) const override;
  [[nodiscard]] QModelIndex parent(const QModelIndex& child) const override;
  [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] bool hasChildren(const QModelIndex& parent = {}) const override;
  [[nodiscard]] Qt::ItemFlags flags(const QModelIndex& index) const override;
  [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
  [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                    int role) const override;

 private:
  [[nodiscard]] std::vector<std::uint32_t> Sorted(int column, bool ascending) const;
  void MoveToTop(std::vector<std::uint32_t>& order) const;
  void Apply(std::vector<std::uint32_t> order);

  void Changed(int row);
  [[nodiscard]] MWListItem& Item(int row);

  std::deque<MWListItem> items_;      // in the order of arrival; removed ones stay until Clear
  std::vector<std::uint32_t> order_;  // row -> position in items_
  bool enabled_ = true;
};

}  // namespace corvane
