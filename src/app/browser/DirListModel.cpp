#include "app/browser/DirListModel.h"

#include <malloc.h>

#include <QFontDatabase>
#include <algorithm>
#include <span>
#include <string_view>
#include <utility>

#include "app/shared/ScreenText.h"

namespace corvane {
namespace {

/// One row's place in a sort.
struct SortEntry {
  std::uint64_t key;
  std::uint32_t position;
};

using SortRange = std::span<SortEntry>;

void SortByKey(SortRange range, bool ascending) {
  std::ranges::stable_sort(range, [ascending](const SortEntry& a, const SortEntry& b) {
    return ascending ? a.key < b.key : b.key < a.key;
  });
}

/// Eight bytes of a name, letters lowered, as a number that orders as they do.
std::uint64_t NameKey(std::string_view name, std::size_t from) {
  std::uint64_t key = 0;
  for (std::size_t i = from; i < from + sizeof key; ++i) {
    key = key << 8 | (i < name.size() ? Lowered(name[i]) : 0U);
  }
  return key;
}

/// Sorts by the first eight bytes of the names, then each run of equal ones by the next eight, and
/// so on: long names with a common beginning cost no more than others.
void SortByName(SortRange all, const std::deque<MWListItem>& items, bool ascending) {
  struct Run {
    SortRange range;
    std::size_t from;
  };
  std::vector<Run> runs{{all, 0}};
  while (!runs.empty()) {
    const auto [range, from] = runs.back();
    runs.pop_back();
    bool longer = false;
    for (SortEntry& entry : range) {
      const std::string& name = items[entry.position].Name();
      entry.key = NameKey(name, from);
      longer = longer || name.size() > from + sizeof entry.key;
    }
    SortByKey(range, ascending);
    if (!longer) continue;
    for (std::size_t begin = 0, end = 0; begin < range.size(); begin = end) {
      for (end = begin + 1; end < range.size() && range[end].key == range[begin].key;) ++end;
      if (end - begin > 1) runs.push_back({range.subspan(begin, end - begin), from + 8});
    }
  }
}

QString ShownSize(const MWListItem& item) {
  return QString::fromStdString(item.SizeText())
      .replace(QStringLiteral("<dir>"), DirListModel::tr("<dir>"))
      .replace(QStringLiteral("<link>"), DirListModel::tr("<link>"))
      .replace('.', DirListModel::tr(".", "the decimal point of a size"));
}

QString ShownDate(const MWListItem& item) {
  QString text = QString::fromStdString(item.DateText());
  const QStringList parts = text.split('/');
  if (parts.size() != 3) return text;
  return DirListModel::tr("%1/%2/%3", "month, day, year").arg(parts[0], parts[1], parts[2]);
}

}  // namespace

const MWListItem& DirListModel::At(int row) const {
  return items_[order_.at(static_cast<std::size_t>(row))];
}

void DirListModel::Clear() {
  constexpr std::size_t kManyRows = 10'000;
  const bool many = items_.size() > kManyRows;
  beginResetModel();
  items_.clear();
  items_.shrink_to_fit();
  order_.clear();
  order_.shrink_to_fit();
  endResetModel();
  // The rows were made on the connection's thread, whose memory would not be given back otherwise.
  if (many) ::malloc_trim(0);
}

void DirListModel::Append(std::vector<MWListItem> items) {
  if (items.empty()) return;
  beginInsertRows({}, Count(), Count() + static_cast<int>(items.size()) - 1);
  for (MWListItem& item : items) {
    order_.push_back(static_cast<std::uint32_t>(items_.size()));
    items_.push_back(std::move(item));
  }
  endInsertRows();
}

void DirListModel::Insert(int row, MWListItem item) {
  beginInsertRows({}, row, row);
  order_.insert(order_.begin() + row, static_cast<std::uint32_t>(items_.size()));
  items_.push_back(std::move(item));
  endInsertRows();
}

void DirListModel::SetSizeAndTime(int row, std::int64_t size, const std::tm& time) {
  Item(row).SetSizeAndTime(size, time);
  Changed(row);
}

void DirListModel::Remove(int row) {
  beginRemoveRows({}, row, row);
  order_.erase(order_.begin() + row);
  endRemoveRows();
}

void DirListModel::Rename(int row, const std::string& name) {
  Item(row).RenameItem(name);
  Changed(row);
}

void DirListModel::BecomeFile(int row, std::int64_t size) {
  Item(row).BecomeFile(size);
  Changed(row);
}

MWListItem& DirListModel::Item(int row) {
  return items_[order_.at(static_cast<std::size_t>(row))];
}

void DirListModel::Changed(int row) {
  Q_EMIT dataChanged(index(row, 0), index(row, kColumns - 1));
}

void DirListModel::SetEnabledAll(bool enabled) {
  if (enabled_ == enabled) return;
  enabled_ = enabled;
  if (Count() > 0) Q_EMIT dataChanged(index(0, 0), index(Count() - 1, kColumns - 1));
}

int DirListModel::Find(std::string_view name) const {
  const auto found = std::ranges::find_if(
      order_, [&](std::uint32_t position) { return items_[position].Name() == name; });
  return found == order_.end() ? -1 : static_cast<int>(found - order_.begin());
}

int DirListModel::FindItem(std::string_view prefix) const {
  const auto found = std::ranges::find_if(order_, [&](std::uint32_t position) {
    const std::string_view name = items_[position].Name();
    return CompareLowered(name.substr(0, prefix.size()), prefix) == 0;
  });
  return found == order_.end() ? -1 : static_cast<int>(found - order_.begin());
}

int DirListModel::PlaceFor(std::string_view name) const {
  const auto first = order_.begin() + std::min<std::ptrdiff_t>(2, std::ssize(order_));
  const auto found = std::find_if(first, order_.end(), [&](std::uint32_t position) {
    return CompareLowered(items_[position].Name(), name) > 0;
  });
  return static_cast<int>(found - order_.begin());
}

std::vector<std::uint32_t> DirListModel::Sorted(int column, bool ascending) const {
  constexpr std::uint64_t kSign = std::uint64_t{1} << 63;  // negative sizes below the others
  std::vector<SortEntry> entries;
  entries.reserve(order_.size());
  for (const std::uint32_t position : order_) {
    const MWListItem& item = items_[position];
    entries.push_back(
        {column == kSize ? static_cast<std::uint64_t>(item.Size()) ^ kSign : item.TimeKey(),
         position});
  }
  if (column == kName) {
    SortByName(entries, items_, ascending);
  } else {
    SortByKey(entries, ascending);
  }
  std::vector<std::uint32_t> order;
  order.reserve(entries.size());
  for (const SortEntry& entry : entries) order.push_back(entry.position);
  return order;
}

void DirListModel::MoveToTop(std::vector<std::uint32_t>& order) const {
  auto top = order.begin();
  for (const std::string_view name : {".", ".."}) {
    const auto found = std::find_if(
        top, order.end(), [&](std::uint32_t position) { return items_[position].Name() == name; });
    if (found == order.end()) continue;
    std::rotate(top, found, found + 1);
    ++top;
  }
}

void DirListModel::sort(int column, Qt::SortOrder order) {
  if (column <= kIcon || column >= kColumns) return;
  std::vector<std::uint32_t> sorted = Sorted(column, order == Qt::AscendingOrder);
  MoveToTop(sorted);
  if (sorted != order_) Apply(std::move(sorted));
}

void DirListModel::Apply(std::vector<std::uint32_t> order) {
  Q_EMIT layoutAboutToBeChanged({}, VerticalSortHint);
  const QModelIndexList old = persistentIndexList();
  if (!old.isEmpty()) {
    std::vector<int> rowOf(items_.size());
    for (std::size_t row = 0; row < order.size(); ++row) rowOf[order[row]] = static_cast<int>(row);
    QModelIndexList moved;
    moved.reserve(old.size());
    for (const QModelIndex& each : old) {
      const std::uint32_t position = order_[static_cast<std::size_t>(each.row())];
      moved.append(index(rowOf[position], each.column()));
    }
    changePersistentIndexList(old, moved);
  }
  order_ = std::move(order);
  Q_EMIT layoutChanged({}, VerticalSortHint);
}

QModelIndex DirListModel::index(int row, int column, const QModelIndex& parent) const {
  if (parent.isValid() || row < 0 || row >= Count() || column < 0 || column >= kColumns) return {};
  return createIndex(row, column);
}

QModelIndex DirListModel::parent(const QModelIndex& /*child*/) const {
  return {};
}

int DirListModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : Count();
}

int DirListModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : kColumns;
}

bool DirListModel::hasChildren(const QModelIndex& parent) const {
  return !parent.isValid() && Count() > 0;
}

Qt::ItemFlags DirListModel::flags(const QModelIndex& index) const {
  if (!index.isValid()) return Qt::NoItemFlags;
  const Qt::ItemFlags fixed = Qt::ItemIsSelectable | Qt::ItemNeverHasChildren;
  if (!enabled_) return fixed;
  const bool canBeDragged = !At(index.row()).IsDots();
  return fixed | Qt::ItemIsEnabled | (canBeDragged ? Qt::ItemIsDragEnabled : Qt::NoItemFlags);
}

QVariant DirListModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) return {};
  const MWListItem& item = At(index.row());
  switch (role) {
    case Qt::DecorationRole:
      return index.column() == kIcon ? QVariant(ListIcon(item.Icon())) : QVariant();
    case Qt::DisplayRole:
    case Qt::AccessibleTextRole:
      switch (index.column()) {
        case kName: return ToText(item.Name());
        case kSize: return ShownSize(item);
        case kDate: return ShownDate(item);
        default: return {};
      }
    case Qt::ToolTipRole:
      return index.column() == kName ? Harmless(ToText(item.Name())) : QVariant();
    case Qt::FontRole:
      if (index.column() < kSize) return {};
      return QFontDatabase::systemFont(QFontDatabase::FixedFont);
    default: return {};
  }
}

QVariant DirListModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation != Qt::Horizontal) return {};
  if (role == Qt::TextAlignmentRole) return int{Qt::AlignLeft | Qt::AlignVCenter};
  if (role != Qt::DisplayRole) return {};
  switch (section) {
    case kName: return tr("Name");
    case kSize: return tr("Size");
    case kDate: return tr("Date");
    default: return {};
  }
}

}  // namespace corvane
