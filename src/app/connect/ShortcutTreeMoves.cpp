// How rows of the shortcut list get into folders and into another order.

#include <QDropEvent>
#include <QHeaderView>
#include <QMimeData>
#include <algorithm>
#include <utility>

#include "app/connect/FolderItem.h"
#include "app/connect/ShortCutItem.h"
#include "app/connect/ShortcutTree.h"
#include "app/shared/Style.h"

namespace corvane {
namespace {

// What is dragged stays within its list: the data names the list.
constexpr const char* kRows = "application/x-corvane-shortcut-rows";

QByteArray NameOf(const ShortcutTree* list) {
  return QByteArray::number(reinterpret_cast<quintptr>(list));
}

// Takes the elements for which `moves` is true out of `all` and puts them, in the order that they
// had, before or behind the element for which `isMark` is true, at the end without such a one.
template <typename Element, typename Moves, typename IsMark>
void PutBeside(std::vector<Element>& all, const Moves& moves, const IsMark& isMark, bool behind) {
  std::vector<Element> moved;
  std::ranges::copy_if(all, std::back_inserter(moved), moves);
  // The mark may itself be one that moves.
  const auto mark = std::ranges::find_if(all, isMark);
  auto at =
      std::count_if(all.begin(), mark, [&moves](const Element& each) { return !moves(each); });
  if (mark != all.end() && behind && !moves(*mark)) ++at;
  std::erase_if(all, moves);
  all.insert(all.begin() + at, moved.begin(), moved.end());
}

}  // namespace

QStringList ShortcutTree::mimeTypes() const {
  return {kRows};
}

QMimeData* ShortcutTree::mimeData(const QList<QTreeWidgetItem*>& /*items*/) const {
  auto* data = new QMimeData;
  data->setData(kRows, NameOf(this));
  return data;
}

ShortcutTree::Moving ShortcutTree::ToMove() const {
  Moving moving;
  const std::vector<QTreeWidgetItem*> selected = Selected();
  const auto goesAlong = [&selected](const QTreeWidgetItem* item) {
    for (QTreeWidgetItem* around = item->parent(); around != nullptr; around = around->parent()) {
      if (std::ranges::find(selected, around) != selected.end()) return true;
    }
    return false;
  };
  for (QTreeWidgetItem* item : selected) {
    if (goesAlong(item)) continue;
    if (ShortCutItem* row = ShortCutItem::Of(item)) moving.rows.push_back(row);
    if (const FolderItem* folder = FolderItem::Of(item)) moving.folders.push_back(folder->Path());
  }
  return moving;
}

void ShortcutTree::dropEvent(QDropEvent* event) {
  event->ignore();
  setState(NoState);
  if (event->mimeData()->data(kRows) != NameOf(this)) return;
  // The rows are moved here; who drags has to remove nothing.
  event->setDropAction(Qt::CopyAction);
  event->accept();
  MoveTo(PlaceOf(event));
  viewport()->update();
}

// Between rows a drop orders, on a folder it goes into it.
ShortcutTree::Place ShortcutTree::PlaceOf(QDropEvent* event) {
  QTreeWidgetItem* item = itemAt(event->position().toPoint());
  if (item == nullptr) return {.beside = rows_.empty() ? nullptr : rows_.back(), .behind = true};
  const FolderItem* folder = FolderItem::Of(item);
  const DropIndicatorPosition where = dropIndicatorPosition();
  const bool intoOpen = where == BelowItem && item->isExpanded() && item->childCount() > 0;
  if (folder != nullptr && (where == OnItem || intoOpen)) return {.folder = folder->Path()};
  const std::string around = folder != nullptr ? std::string(FolderAround(folder->Path()))
                                               : ShortCutItem::Of(item)->Record().folder;
  return {.folder = around, .beside = item, .behind = where != AboveItem};
}

void ShortcutTree::MoveTo(const Place& place) {
  const Moving moving = ToMove();
  const bool inFolders = Style::InForce().ShowsFolders();
  for (ShortCutItem* row : moving.rows) {
    if (inFolders) row->SetFolder(place.folder);
  }
  std::vector<std::string> moved;
  for (const std::string& path : moving.folders) {
    if (MoveFolder(path, place.folder)) moved.push_back(FolderIn(place.folder, FolderName(path)));
  }
  if (const FolderItem* beside = FolderItem::Of(place.beside)) {
    OrderFolders(moved, beside->Path(), place.behind);
  } else if (place.beside != nullptr) {
    OrderRows(moving.rows, ShortCutItem::Of(place.beside), place.behind);
    // An order that the user makes is to be seen.
    header()->setSortIndicator(-1, Qt::AscendingOrder);
  }
  Arrange();
  for (const std::string& path : moved) {
    if (FolderItem* folder = FolderAt(path)) folder->setSelected(true);
  }
  Q_EMIT Rearranged();
}

void ShortcutTree::MoveInto(const std::string& folder) {
  for (ShortcutFolder& each : folders_) each.open |= each.path == folder;
  MoveTo({.folder = folder});
}

// False where it would stand in itself or too deep.
bool ShortcutTree::MoveFolder(const std::string& path, const std::string& around) {
  const std::string to = FolderIn(around, FolderName(path));
  if (IsWithin(around, path)) return false;
  const auto fits = [&](const ShortcutFolder& folder) {
    const std::string whole = to + folder.path.substr(path.size());
    return !IsWithin(folder.path, path) || CleanPath(whole) == whole;
  };
  if (!std::ranges::all_of(folders_, fits)) return false;
  for (ShortcutFolder& folder : folders_) {
    if (IsWithin(folder.path, path)) folder.path = MovedPath(folder.path, path, to);
  }
  for (ShortCutItem* row : rows_) {
    const std::string& now = row->Record().folder;
    if (!now.empty() && IsWithin(now, path)) row->SetFolder(MovedPath(now, path, to));
  }
  return true;
}

void ShortcutTree::OrderRows(const std::vector<ShortCutItem*>& moved, const ShortCutItem* beside,
                             bool behind) {
  PutBeside(
      rows_, [&moved](ShortCutItem* row) { return std::ranges::find(moved, row) != moved.end(); },
      [beside](const ShortCutItem* row) { return row == beside; }, behind);
}

void ShortcutTree::OrderFolders(const std::vector<std::string>& moved, const std::string& beside,
                                bool behind) {
  PutBeside(
      folders_,
      [&moved](const ShortcutFolder& folder) {
        return std::ranges::find(moved, folder.path) != moved.end();
      },
      [&beside](const ShortcutFolder& folder) { return folder.path == beside; }, behind);
}

// Those that stand together move together; at the end of its folder nothing moves.
void ShortcutTree::MoveBy(int step) {
  const Moving moving = ToMove();
  QTreeWidgetItem* beside = nullptr;
  const bool rows = !moving.rows.empty();
  const auto moves = [&](QTreeWidgetItem* item) { return item->isSelected(); };
  QTreeWidgetItem* edge = nullptr;
  if (rows) {
    edge = step < 0 ? moving.rows.front() : moving.rows.back();
  } else if (!moving.folders.empty()) {
    edge = FolderAt(step < 0 ? moving.folders.front() : moving.folders.back());
  }
  if (edge == nullptr || header()->sortIndicatorSection() >= 0) return;
  QTreeWidgetItem* around = edge->parent() != nullptr ? edge->parent() : invisibleRootItem();
  for (int at = around->indexOfChild(edge) + step; at >= 0 && at < around->childCount();
       at += step) {
    beside = around->child(at);
    if (!moves(beside) && !beside->isHidden()) break;
    beside = nullptr;
  }
  if (beside == nullptr || beside->type() != edge->type()) return;
  if (const FolderItem* folder = FolderItem::Of(beside)) {
    OrderFolders(moving.folders, folder->Path(), step > 0);
  } else {
    OrderRows(moving.rows, ShortCutItem::Of(beside), step > 0);
  }
  Arrange();
  scrollToItem(currentItem());
  Q_EMIT Rearranged();
}

}  // namespace corvane
