#include "app/entries/FindModel.h"

#include <QFont>
#include <QGuiApplication>
#include <algorithm>
#include <iterator>

#include "app/shared/LookStyle.h"
#include "app/shared/ScreenText.h"
#include "app/shared/Style.h"
#include "app/shared/Symbols.h"
#include "remote/RemotePath.h"

namespace corvane {
namespace {

bool IsFigure(int column) {
  return column == FindModel::kSize || column == FindModel::kDate;
}

}  // namespace

void FindModel::Clear() {
  beginResetModel();
  found_ = {};
  endResetModel();
}

void FindModel::Append(std::vector<FoundEntry> entries) {
  if (entries.empty()) return;
  const int first = rowCount();
  beginInsertRows({}, first, first + static_cast<int>(entries.size()) - 1);
  std::ranges::move(entries, std::back_inserter(found_));
  endInsertRows();
}

// Few rows go one by one, so that what is selected stays.
void FindModel::Remove(const std::set<std::string>& paths) {
  const auto goes = [&](const FoundEntry& one) {
    return paths.contains(PathBelow(one.directory, one.entry.name));
  };
  constexpr std::size_t kMany = 100;
  if (paths.size() > kMany) {
    beginResetModel();
    std::erase_if(found_, goes);
    return endResetModel();
  }
  for (int row = rowCount() - 1; row >= 0; --row) {
    if (!goes(At(row))) continue;
    beginRemoveRows({}, row, row);
    found_.erase(found_.begin() + row);
    endRemoveRows();
  }
}

int FindModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(found_.size());
}

int FindModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : kColumns;
}

QString FindModel::TextOf(const FoundEntry& found, int column) const {
  switch (column) {
    case kName: return host_.TextsOf(found.entry).name;
    case kPath: return ToText(found.directory, host_.Server().encoding);
    case kSize: return host_.TextsOf(found.entry).size;
    case kDate: return host_.TextsOf(found.entry).date;
    default: return {};
  }
}

QVariant FindModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) return {};
  const FoundEntry& found = At(index.row());
  const int column = index.column();
  switch (role) {
    case Qt::DisplayRole: return TextOf(found, column);
    case Qt::ToolTipRole: return column <= kPath ? Harmless(TextOf(found, column)) : QVariant();
    case Qt::DecorationRole:
      return column == kName ? Symbol(host_.TextsOf(found.entry).symbol) : QVariant();
    case Qt::TextAlignmentRole: {
      const Qt::Alignment side = IsFigure(column) ? Style::InForce().FiguresSide() : Qt::AlignLeft;
      return static_cast<int>(side | Qt::AlignVCenter);
    }
    case Qt::FontRole:
      return IsFigure(column) ? Style::InForce().FiguresFont(QGuiApplication::font()) : QVariant();
    case Qt::SizeHintRole: return QSize(0, LookStyle::kRowHeight);
    default: return {};
  }
}

QVariant FindModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation != Qt::Horizontal) return {};
  if (role == Qt::TextAlignmentRole) {
    const Qt::Alignment side = IsFigure(section) ? Style::InForce().FiguresSide() : Qt::AlignLeft;
    return static_cast<int>(side | Qt::AlignVCenter);
  }
  if (role != Qt::DisplayRole) return {};
  switch (section) {
    case kName: return tr("Name");
    case kPath: return tr("Path");
    case kSize: return tr("Size");
    case kDate: return tr("Date");
    default: return {};
  }
}

void FindModel::sort(int column, Qt::SortOrder order) {
  const auto before = [column](const FoundEntry& a, const FoundEntry& b) {
    switch (column) {
      case kPath: return a.directory < b.directory;
      case kSize: return a.entry.size.value_or(-1) < b.entry.size.value_or(-1);
      case kDate:
        return (a.entry.modified ? a.entry.modified->seconds : 0) <
               (b.entry.modified ? b.entry.modified->seconds : 0);
      default: return a.entry.name < b.entry.name;
    }
  };
  Q_EMIT layoutAboutToBeChanged({}, VerticalSortHint);
  for (const QModelIndex& old : persistentIndexList()) changePersistentIndex(old, {});
  std::ranges::stable_sort(found_, [&](const FoundEntry& a, const FoundEntry& b) {
    return order == Qt::AscendingOrder ? before(a, b) : before(b, a);
  });
  Q_EMIT layoutChanged({}, VerticalSortHint);
}

}  // namespace corvane
