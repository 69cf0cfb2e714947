#pragma once

#include <QCollator>
#include <cstdint>
#include <deque>
#include <span>
#include <string_view>
#include <vector>

#include "app/browser/MWListItem.h"

namespace corvane {

/// Compares names as readers of the user's language expect it, whatever the case. GUI thread.
[[nodiscard]] QCollator NameCollator(bool natural);

/// Rows that are to be added, and what orders their names naturally: a key for each of them, or
/// none where there are none yet.
struct NewRows {
  std::vector<MWListItem> items;
  std::vector<QCollatorSortKey> keys;
};

/// By what the rows of a listing are ordered.
struct SortRule {
  int column = 0;  ///< a DirListModel::Column
  bool ascending = true;
  bool directoriesFirst = true;
  bool natural = true;  ///< "file2" stands before "file10"

  friend bool operator==(const SortRule&, const SortRule&) = default;
};

/// The order of a listing's rows, which are named by their positions in `items`. Names are ordered
/// by the user's locale and without case, what is equal otherwise by name; in the style that orders
/// by bytes, by those, and what is equal stays as it stands. "." and ".." lead. GUI thread.
class RowOrder {
 public:
  using Positions = std::vector<std::uint32_t>;

  /// `items` outlives the order.
  explicit RowOrder(const std::deque<MWListItem>& items);

  [[nodiscard]] const SortRule& Rule() const { return rule_; }
  void SetRule(const SortRule& rule);

  /// Does ahead of time what sorting the items will need: to be called when some have come. `keys`
  /// are those of the last items, as of NewRows.
  void Prepare(std::vector<QCollatorSortKey> keys = {});
  /// The name at that position is another one now.
  void Renamed(std::uint32_t position);
  void Clear();

  [[nodiscard]] Positions Sorted(Positions order);
  /// Where a new or renamed item belongs in `order`, which does not hold it.
  [[nodiscard]] std::size_t PlaceFor(std::uint32_t position, std::span<const std::uint32_t> order);

 private:
  [[nodiscard]] bool ByBytes() const;
  [[nodiscard]] QCollatorSortKey KeyOf(const MWListItem& item) const;
  [[nodiscard]] int CompareNames(std::uint32_t a, std::uint32_t b) const;
  [[nodiscard]] int Compare(std::uint32_t a, std::uint32_t b) const;
  [[nodiscard]] std::vector<std::uint64_t> ColumnKeys(const Positions& order) const;
  void SortByColumn(Positions& order) const;
  void LeadWithDots(Positions& order) const;

  const std::deque<MWListItem>& items_;
  SortRule rule_;
  QCollator collator_;
  std::vector<QCollatorSortKey> keys_;  // of the first items; as many as have been needed
};

/// The place of a new name among names in byte order, below the dots.
[[nodiscard]] std::size_t PlaceByBytes(std::string_view name, const std::deque<MWListItem>& items,
                                       std::span<const std::uint32_t> order);

}  // namespace corvane
