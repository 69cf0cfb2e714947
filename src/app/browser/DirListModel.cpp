#include "app/browser/DirListModel.h"

#include <malloc.h>

#include <algorithm>
#include <utility>

#include "app/shared/Figures.h"
#include "app/shared/ScreenText.h"
#include "app/shared/Style.h"
#include "remote/Permissions.h"

namespace corvane {
namespace {

void Erase(RowOrder::Positions& positions, std::uint32_t position) {
  positions.erase(std::ranges::find(positions, position));
}

QString LinkTarget(const MWListItem& item) {
  const std::string& target = item.Attributes().linkTarget;
  return target.empty() ? QString() : QStringLiteral(" \u2192 ") + item.TextOf(target);
}

QString ShownText(const MWListItem& item, int column) {
  const EntryAttributes& attributes = item.Attributes();
  switch (column) {
    case DirListModel::kName: return item.NameText();
    case DirListModel::kSize: return Style::InForce().EntrySize(item.Size(), item.SizeText());
    case DirListModel::kDate:
      return Style::InForce().EntryDate(item.Day(), item.Time(), item.DateText());
    case DirListModel::kPermissions:
      return ToText(Permissions::WithoutType(attributes.permissions));
    case DirListModel::kOwner: return item.TextOf(attributes.owner);
    case DirListModel::kGroup: return item.TextOf(attributes.group);
    case DirListModel::kKind: return NameOf(item.Kind());
    default: return {};
  }
}

QString ToolTip(const MWListItem& item, int column) {
  if (column == DirListModel::kName) return Harmless(item.NameText() + LinkTarget(item));
  if (column == DirListModel::kSize && item.Size() >= 0) return ExactSize(item.Size());
  return {};
}

}  // namespace

DirListModel::DirListModel(QObject* parent) : QAbstractItemModel(parent), rowOrder_(items_) {}

const MWListItem& DirListModel::At(int row) const {
  return items_[order_.at(static_cast<std::size_t>(row))];
}

MWListItem& DirListModel::Item(int row) {
  return items_[order_.at(static_cast<std::size_t>(row))];
}

int DirListModel::EntryCount() const {
  int dots = 0;
  while (dots < std::min(Count(), 2) && At(dots).IsDots()) ++dots;
  return Count() - dots;
}

void DirListModel::Clear() {
  constexpr std::size_t kManyRows = 10'000;
  const bool many = items_.size() > kManyRows;
  beginResetModel();
  items_ = {};
  sorted_ = {};
  order_ = {};
  shown_ = 0;
  rowOrder_.Clear();
  endResetModel();
  // The rows were made on the connection's thread, whose memory would not be given back otherwise.
  if (many) ::malloc_trim(0);
}

void DirListModel::Append(NewRows rows) {
  Positions shown;
  Positions hidden;
  for (MWListItem& item : rows.items) {
    const auto position = static_cast<std::uint32_t>(items_.size());
    (filter_.Matches(item) ? shown : hidden).push_back(position);
    sorted_.push_back(position);
    items_.push_back(std::move(item));
  }
  rowOrder_.Prepare(std::move(rows.keys));
  order_.insert(order_.end(), hidden.begin(), hidden.end());
  if (shown.empty()) return;
  const auto end = static_cast<std::ptrdiff_t>(shown_);
  beginInsertRows({}, ShownCount(), ShownCount() + static_cast<int>(shown.size()) - 1);
  order_.insert(order_.begin() + end, shown.begin(), shown.end());
  shown_ += shown.size();
  endInsertRows();
}

void DirListModel::Insert(MWListItem item) {
  const auto position = static_cast<std::uint32_t>(items_.size());
  const bool shown = filter_.Matches(item);
  items_.push_back(std::move(item));
  const auto place = rowOrder_.PlaceFor(position, sorted_);
  sorted_.insert(sorted_.begin() + static_cast<std::ptrdiff_t>(place), position);
  AddTo(shown ? static_cast<int>(rowOrder_.PlaceFor(position, Shown())) : Count(), position);
}

// Behind the last row it is hidden, unless that is where those shown end.
void DirListModel::AddTo(int row, std::uint32_t position) {
  const bool shown = row <= ShownCount() && filter_.Matches(items_[position]);
  if (shown) beginInsertRows({}, row, row);
  order_.insert(order_.begin() + row, position);
  if (!shown) return;
  ++shown_;
  endInsertRows();
}

// Out of the order of rows; the entry itself stays.
void DirListModel::Take(int row) {
  const bool shown = IsShown(row);
  if (shown) beginRemoveRows({}, row, row);
  order_.erase(order_.begin() + row);
  if (!shown) return;
  --shown_;
  endRemoveRows();
}

void DirListModel::Remove(int row) {
  Erase(sorted_, order_.at(static_cast<std::size_t>(row)));
  Take(row);
}

void DirListModel::Rename(int row, const std::string& name) {
  Item(row).RenameItem(name);
  Settle(row);
}

void DirListModel::Renew(int row, MWListItem item) {
  Item(row) = std::move(item);
  Settle(row);
}

void DirListModel::Settle(int row) {
  const std::uint32_t position = order_.at(static_cast<std::size_t>(row));
  rowOrder_.Renamed(position);
  Changed(row);
  if (Style::InForce().OrdersByBytes()) return;
  Erase(sorted_, position);
  const auto place = rowOrder_.PlaceFor(position, sorted_);
  sorted_.insert(sorted_.begin() + static_cast<std::ptrdiff_t>(place), position);
  const bool shown = filter_.Matches(Item(row));
  if (shown && IsShown(row)) return MoveRow(row);
  if (shown == IsShown(row)) return;
  Take(row);
  AddTo(shown ? static_cast<int>(rowOrder_.PlaceFor(position, Shown())) : Count(), position);
}

// To its place among the others that are shown.
void DirListModel::MoveRow(int row) {
  const auto from = order_.begin() + row;
  const std::uint32_t position = *from;
  Positions others(order_.begin(), order_.begin() + static_cast<std::ptrdiff_t>(shown_));
  others.erase(others.begin() + row);
  const int to = static_cast<int>(rowOrder_.PlaceFor(position, others));
  if (to == row) return;
  beginMoveRows({}, row, row, {}, to < row ? to : to + 1);
  order_.erase(from);
  order_.insert(order_.begin() + to, position);
  endMoveRows();
}

void DirListModel::SetSizeAndTime(int row, std::int64_t size, const std::tm& time) {
  Item(row).SetSizeAndTime(size, time);
  Changed(row);
}

void DirListModel::BecomeFile(int row, std::int64_t size) {
  Item(row).BecomeFile(size);
  Changed(row);
}

void DirListModel::Changed(int row) {
  if (IsShown(row)) Q_EMIT dataChanged(index(row, 0), index(row, kColumns - 1));
}

void DirListModel::SetEnabledAll(bool enabled) {
  if (enabled_ == enabled) return;
  enabled_ = enabled;
  if (shown_ > 0) Q_EMIT dataChanged(index(0, 0), index(ShownCount() - 1, kColumns - 1));
}

int DirListModel::Find(std::string_view name) const {
  const auto found = std::ranges::find_if(
      order_, [&](std::uint32_t position) { return items_[position].Name() == name; });
  return found == order_.end() ? -1 : static_cast<int>(found - order_.begin());
}

int DirListModel::FindItem(const QString& prefix) const {
  const NameFilter typed(prefix);
  const auto found = std::ranges::find_if(
      Shown(), [&](std::uint32_t position) { return typed.Begins(items_[position]); });
  return found == Shown().end() ? -1 : static_cast<int>(found - Shown().begin());
}

DirListModel::Positions DirListModel::Filtered(std::size_t& shown) const {
  if (filter_.IsEmpty()) {
    shown = sorted_.size();
    return sorted_;
  }
  Positions order;
  Positions hidden;
  order.reserve(sorted_.size());
  for (const std::uint32_t position : sorted_) {
    (filter_.Matches(items_[position]) ? order : hidden).push_back(position);
  }
  shown = order.size();
  order.insert(order.end(), hidden.begin(), hidden.end());
  return order;
}

void DirListModel::SetFilter(const QString& text) {
  if (text == filter_.Text()) return;
  beginResetModel();
  filter_ = NameFilter(text);
  order_ = Filtered(shown_);
  endResetModel();
}

void DirListModel::Sort(const SortRule& rule) {
  rowOrder_.SetRule(rule);
  sorted_ = rowOrder_.Sorted(std::move(sorted_));
  std::size_t shown = 0;
  Positions order = Filtered(shown);
  if (order != order_) Apply(std::move(order));
}

void DirListModel::Apply(Positions order) {
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
  if (parent.isValid() || row < 0 || !IsShown(row) || column < 0 || column >= kColumns) return {};
  return createIndex(row, column);
}

QModelIndex DirListModel::parent(const QModelIndex& /*child*/) const {
  return {};
}

int DirListModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : ShownCount();
}

int DirListModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : kColumns;
}

bool DirListModel::hasChildren(const QModelIndex& parent) const {
  return !parent.isValid() && shown_ > 0;
}

Qt::ItemFlags DirListModel::flags(const QModelIndex& index) const {
  if (!index.isValid()) return Qt::NoItemFlags;
  Qt::ItemFlags flags = Qt::ItemIsSelectable | Qt::ItemNeverHasChildren;
  if (!enabled_) return flags;
  flags |= Qt::ItemIsEnabled;
  if (At(index.row()).IsDots()) return flags;
  if (index.column() == kName) flags |= Qt::ItemIsEditable;
  return flags | Qt::ItemIsDragEnabled;
}

QVariant DirListModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) return {};
  const MWListItem& item = At(index.row());
  const int column = index.column();
  switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole: return ShownText(item, column);
    case Qt::AccessibleTextRole:
      return column == kName ? ShownText(item, column) + LinkTarget(item) : ShownText(item, column);
    case Qt::ToolTipRole: return ToolTip(item, column);
    default: return {};
  }
}

QVariant DirListModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation != Qt::Horizontal) return {};
  if (role == Qt::TextAlignmentRole) {
    const bool figures = section == kSize || section == kDate;
    const Qt::Alignment side = figures ? Style::InForce().FiguresSide() : Qt::AlignLeft;
    return static_cast<int>(side | Qt::AlignVCenter);
  }
  if (role != Qt::DisplayRole) return {};
  switch (section) {
    case kName: return tr("Name");
    case kSize: return tr("Size");
    case kDate: return tr("Date");
    case kPermissions: return tr("Permissions");
    case kOwner: return tr("Owner");
    case kGroup: return tr("Group");
    case kKind: return tr("Kind");
    default: return {};
  }
}

}  // namespace corvane
