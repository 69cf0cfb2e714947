#pragma once

#include <QAbstractItemModel>
#include <cstdint>
#include <deque>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "app/browser/MWListItem.h"
#include "app/browser/NameFilter.h"
#include "app/browser/RowOrder.h"

namespace corvane {

/// The rows of one listing, in the order shown. A filter hides rows from the eye alone: they are
/// numbered behind those that are shown, and whoever looks a name up finds them. GUI thread.
class DirListModel : public QAbstractItemModel {
  Q_OBJECT

 public:
  enum Column { kName, kSize, kDate, kPermissions, kOwner, kGroup, kKind, kColumns };

  explicit DirListModel(QObject* parent = nullptr);

  /// All rows, hidden ones included; the first ShownCount() are shown.
  [[nodiscard]] int Count() const { return static_cast<int>(order_.size()); }
  /// The rows but "." and "..".
  [[nodiscard]] int EntryCount() const;
  [[nodiscard]] int ShownCount() const { return static_cast<int>(shown_); }
  [[nodiscard]] const MWListItem& At(int row) const;
  /// A number that stays with the row's entry until Clear; those of the rows that came lately are
  /// the highest.
  [[nodiscard]] std::uint32_t IdOf(int row) const {
    return order_.at(static_cast<std::size_t>(row));
  }

  void Clear();
  void Append(NewRows rows);
  /// Adds a row where its name, or whatever the rows are ordered by, wants it.
  void Insert(MWListItem item);
  void Remove(int row);
  /// The row moves to where its new name belongs.
  void Rename(int row, const std::string& name);
  /// The row gets other facts, and moves to where they belong.
  void Renew(int row, MWListItem item);
  /// A link's row becomes that of a file.
  void BecomeFile(int row, std::int64_t size);
  void SetSizeAndTime(int row, std::int64_t size, const std::tm& time);
  /// Disabled rows are shown grey.
  void SetEnabledAll(bool enabled);

  /// The row whose name is exactly `name`; -1 when there is none.
  [[nodiscard]] int Find(std::string_view name) const;
  /// The first row shown whose name begins with `prefix`, whatever the case; -1 when there is none.
  [[nodiscard]] int FindItem(const QString& prefix) const;

  /// Shows the rows alone whose names contain `text`, whatever the case; an empty text shows all.
  void SetFilter(const QString& text);
  [[nodiscard]] const QString& Filter() const { return filter_.Text(); }

  [[nodiscard]] const SortRule& Rule() const { return rowOrder_.Rule(); }
  /// Sorts all rows, and orders those that come by it.
  void Sort(const SortRule& rule);

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
  using Positions = RowOrder::Positions;

  [[nodiscard]] std::span<const std::uint32_t> Shown() const { return {order_.data(), shown_}; }
  [[nodiscard]] bool IsShown(int row) const { return row < ShownCount(); }
  [[nodiscard]] Positions Filtered(std::size_t& shown) const;
  void Apply(Positions order);
  void AddTo(int row, std::uint32_t position);
  void Take(int row);
  /// Puts a row whose entry has changed where it belongs now, shown or not.
  void Settle(int row);
  void MoveRow(int row);
  void Changed(int row);
  [[nodiscard]] MWListItem& Item(int row);

  std::deque<MWListItem> items_;  // in the order of arrival; removed ones stay until Clear
  RowOrder rowOrder_;
  NameFilter filter_;
  Positions sorted_;       // positions in items_ of all rows, as they are ordered
  Positions order_;        // row -> position: those shown, as they are ordered, then the others
  std::size_t shown_ = 0;  // how many are shown
  bool enabled_ = true;
};

}  // namespace corvane
