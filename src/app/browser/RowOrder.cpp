#include "app/browser/RowOrder.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <map>
#include <utility>

#include "app/browser/ByteOrder.h"
#include "app/browser/DirListModel.h"
#include "app/shared/Figures.h"
#include "app/shared/ScreenText.h"
#include "app/shared/Style.h"

namespace corvane {
namespace {

using Column = DirListModel::Column;

const std::string& AttributeOf(const MWListItem& item, int column) {
  const EntryAttributes& all = item.Attributes();
  if (column == Column::kOwner) return all.owner;
  return column == Column::kGroup ? all.group : all.permissions;
}

/// The place of each kind among their names.
std::array<std::uint64_t, 16> KindRanks() {
  std::map<QString, EntryKind> names;
  for (auto kind = EntryKind::Directory; kind <= EntryKind::Unclear;
       kind = static_cast<EntryKind>(static_cast<int>(kind) + 1)) {
    names.emplace(NameOf(kind), kind);
  }
  std::array<std::uint64_t, 16> ranks{};
  std::uint64_t next = 0;
  for (const auto& [name, kind] : names) ranks.at(static_cast<std::size_t>(kind)) = next++;
  return ranks;
}

/// Sizes that are none stand below the others.
std::uint64_t SizeKey(std::int64_t size) {
  return static_cast<std::uint64_t>(size) ^ std::uint64_t{1} << 63;
}

bool IsDirectory(const MWListItem& item) {
  return item.Type() == kDirectory;
}

int Sign(auto a, auto b) {
  return a < b ? -1 : a > b ? 1 : 0;
}

}  // namespace

QCollator NameCollator(bool natural) {
  QCollator collator(FiguresLocale());
  collator.setCaseSensitivity(Qt::CaseInsensitive);
  collator.setNumericMode(natural);
  return collator;
}

RowOrder::RowOrder(const std::deque<MWListItem>& items)
    : items_(items), collator_(NameCollator(rule_.natural)) {}

void RowOrder::SetRule(const SortRule& rule) {
  if (rule.natural != rule_.natural) {
    keys_.clear();
    collator_.setNumericMode(rule.natural);
  }
  rule_ = rule;
}

bool RowOrder::ByBytes() const {
  return Style::InForce().OrdersByBytes();
}

QCollatorSortKey RowOrder::KeyOf(const MWListItem& item) const {
  return collator_.sortKey(item.NameText());
}

void RowOrder::Prepare(std::vector<QCollatorSortKey> keys) {
  if (ByBytes()) return;
  if (rule_.natural && keys_.size() + keys.size() == items_.size()) {
    std::ranges::move(keys, std::back_inserter(keys_));
  }
  for (std::size_t i = keys_.size(); i < items_.size(); ++i) keys_.push_back(KeyOf(items_[i]));
}

void RowOrder::Renamed(std::uint32_t position) {
  if (position < keys_.size()) keys_[position] = KeyOf(items_[position]);
}

void RowOrder::Clear() {
  keys_.clear();
  keys_.shrink_to_fit();
}

int RowOrder::CompareNames(std::uint32_t a, std::uint32_t b) const {
  const int compared = keys_[a].compare(keys_[b]);
  return compared != 0 ? compared : items_[a].Name().compare(items_[b].Name());
}

/// A number for each row by which the column orders it.
std::vector<std::uint64_t> RowOrder::ColumnKeys(const Positions& order) const {
  std::vector<std::uint64_t> keys;
  keys.reserve(order.size());
  const auto fill = [&](auto key) {
    for (const std::uint32_t position : order) keys.push_back(key(items_[position]));
  };
  switch (rule_.column) {
    case Column::kSize:
      fill([](const MWListItem& item) { return SizeKey(item.Size()); });
      return keys;
    case Column::kDate: fill([](const MWListItem& item) { return item.TimeKey(); }); return keys;
    case Column::kKind:
      fill([ranks = KindRanks()](const MWListItem& item) {
        return ranks.at(static_cast<std::size_t>(item.Kind()));
      });
      return keys;
    default: break;
  }
  std::map<std::string_view, std::uint64_t> ranks;
  for (const std::uint32_t position : order) {
    ranks.emplace(AttributeOf(items_[position], rule_.column), 0);
  }
  std::uint64_t next = 0;
  for (auto& [text, rank] : ranks) rank = next++;
  fill([&](const MWListItem& item) { return ranks[AttributeOf(item, rule_.column)]; });
  return keys;
}

void RowOrder::SortByColumn(Positions& order) const {
  std::vector<SortEntry> entries;
  entries.reserve(order.size());
  if (rule_.column == Column::kName) {
    for (const std::uint32_t position : order) entries.push_back({0, position});
    SortByBytes(entries, items_, rule_.ascending);
  } else {
    const std::vector<std::uint64_t> keys = ColumnKeys(order);
    for (std::size_t i = 0; i < order.size(); ++i) entries.push_back({keys[i], order[i]});
    SortByKey(entries, rule_.ascending);
  }
  std::ranges::transform(entries, order.begin(), &SortEntry::position);
}

void RowOrder::LeadWithDots(Positions& order) const {
  auto top = order.begin();
  for (const std::string_view name : {".", ".."}) {
    const auto found = std::find_if(
        top, order.end(), [&](std::uint32_t position) { return items_[position].Name() == name; });
    if (found == order.end()) continue;
    std::rotate(top, found, found + 1);
    ++top;
  }
}

RowOrder::Positions RowOrder::Sorted(Positions order) {
  if (ByBytes()) {
    SortByColumn(order);
  } else {
    Prepare();
    const bool byName = rule_.column == Column::kName;
    const bool ascending = !byName || rule_.ascending;
    std::ranges::sort(order, [&](std::uint32_t a, std::uint32_t b) {
      return ascending ? CompareNames(a, b) < 0 : CompareNames(b, a) < 0;
    });
    if (!byName) SortByColumn(order);
    if (rule_.directoriesFirst) {
      std::stable_partition(order.begin(), order.end(),
                            [&](std::uint32_t position) { return IsDirectory(items_[position]); });
    }
  }
  LeadWithDots(order);
  return order;
}

/// As Sorted orders two rows.
int RowOrder::Compare(std::uint32_t a, std::uint32_t b) const {
  const MWListItem& first = items_[a];
  const MWListItem& second = items_[b];
  if (first.IsDots() != second.IsDots()) return first.IsDots() ? -1 : 1;
  if (rule_.directoriesFirst && IsDirectory(first) != IsDirectory(second)) {
    return IsDirectory(first) ? -1 : 1;
  }
  int compared = 0;
  switch (rule_.column) {
    case Column::kName: compared = CompareNames(a, b); break;
    case Column::kSize: compared = Sign(first.Size(), second.Size()); break;
    case Column::kDate: compared = Sign(first.TimeKey(), second.TimeKey()); break;
    case Column::kKind: compared = NameOf(first.Kind()).compare(NameOf(second.Kind())); break;
    default: compared = AttributeOf(first, rule_.column).compare(AttributeOf(second, rule_.column));
  }
  if (compared == 0) return CompareNames(a, b);
  return rule_.ascending ? compared : -compared;
}

std::size_t RowOrder::PlaceFor(std::uint32_t position, std::span<const std::uint32_t> order) {
  if (ByBytes()) return PlaceByBytes(items_[position].Name(), items_, order);
  Prepare();
  const auto place = std::ranges::upper_bound(
      order, position, [this](std::uint32_t a, std::uint32_t b) { return Compare(a, b) < 0; });
  return static_cast<std::size_t>(place - order.begin());
}

std::size_t PlaceByBytes(std::string_view name, const std::deque<MWListItem>& items,
                         std::span<const std::uint32_t> order) {
  const auto first = std::ranges::find_if_not(
      order, [&](std::uint32_t position) { return items[position].IsDots(); });
  const auto found = std::find_if(first, order.end(), [&](std::uint32_t position) {
    return CompareLowered(items[position].Name(), name) > 0;
  });
  return static_cast<std::size_t>(found - order.begin());
}

}  // namespace corvane
