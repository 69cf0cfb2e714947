#include "app/connect/ShortcutTree.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QPainter>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <algorithm>
#include <map>
#include <utility>

#include "app/connect/FolderItem.h"
#include "app/connect/ShortCutDelegate.h"
#include "app/connect/ShortCutItem.h"
#include "app/shared/EmptyState.h"
#include "app/shared/ScreenText.h"
#include "app/shared/Style.h"
#include "app/shared/Symbols.h"
#include "app/shared/Tones.h"

namespace corvane {

ShortcutTree::ShortcutTree(QWidget* parent) : QTreeWidget(parent) {
  constexpr int kIndent = 20;
  setObjectName("MainShrtCtView");
  setAccessibleName(tr("Shortcuts"));
  setUniformRowHeights(true);
  setAllColumnsShowFocus(true);
  setIndentation(kIndent);
  setSelectionMode(ExtendedSelection);
  setEditTriggers(NoEditTriggers);
  setFrameShape(NoFrame);
  setItemDelegate(new ShortCutDelegate(this));
  setContextMenuPolicy(Qt::CustomContextMenu);
  setDragDropMode(DragDrop);
  setDefaultDropAction(Qt::MoveAction);
  // A double click on a folder opens it; on a shortcut it is the window's.
  connect(this, &QTreeWidget::itemExpanded, this,
          [this](QTreeWidgetItem* item) { OpenChanged(item, true); });
  connect(this, &QTreeWidget::itemCollapsed, this,
          [this](QTreeWidgetItem* item) { OpenChanged(item, false); });
  connect(this, &QTreeWidget::itemChanged, this, &ShortcutTree::Edited);
}

void ShortcutTree::Add(const std::vector<Shortcut>& shortcuts,
                       const std::vector<ShortcutFolder>& folders) {
  for (const ShortcutFolder& folder : folders) {
    if (std::ranges::find(folders_, folder.path, &ShortcutFolder::path) == folders_.end())
      folders_.push_back(folder);
  }
  for (const Shortcut& shortcut : shortcuts) rows_.push_back(new ShortCutItem(shortcut));
  Arrange();
}

ShortCutItem* ShortcutTree::Find(int id) const {
  const auto row = std::ranges::find(rows_, id, &ShortCutItem::Id);
  return row == rows_.end() ? nullptr : *row;
}

std::string ShortcutTree::CurrentFolder() const {
  if (const FolderItem* folder = FolderItem::Of(currentItem())) return folder->Path();
  const ShortCutItem* row = ShortCutItem::Of(currentItem());
  return row != nullptr && Style::InForce().ShowsFolders() ? row->Record().folder : "";
}

std::vector<QTreeWidgetItem*> ShortcutTree::Selected() const {
  std::vector<QTreeWidgetItem*> selected;
  for (QTreeWidgetItemIterator i(
           const_cast<ShortcutTree*>(this),
           QTreeWidgetItemIterator::Selected | QTreeWidgetItemIterator::NotHidden);
       *i != nullptr; ++i) {
    const QTreeWidgetItem* around = (*i)->parent();
    while (around != nullptr && around->isExpanded()) around = around->parent();
    if (around == nullptr) selected.push_back(*i);
  }
  return selected;
}

void ShortcutTree::SelectVisible() {
  QTreeWidgetItem* item = currentItem() != nullptr ? currentItem() : topLevelItem(0);
  QTreeWidgetItem* visible = item;
  for (; item != nullptr; item = item->parent()) {
    if (item->parent() != nullptr && !item->parent()->isExpanded()) visible = item->parent();
  }
  if (visible != currentItem() || Selected().empty()) Select(visible);
}

// Keys that happen to be held down make no difference.
void ShortcutTree::Select(QTreeWidgetItem* item) {
  if (item == nullptr) return;
  setCurrentItem(item, 0, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
}

// Rows stay the same objects, so that who edits one finds it again.
void ShortcutTree::Arrange() {
  const QScopedValueRollback arranging(arranging_, true);
  std::set<QTreeWidgetItem*> selected;
  std::set<std::string, std::less<>> selectedFolders;
  for (QTreeWidgetItem* item : Selected()) {
    selected.insert(item);
    if (const FolderItem* folder = FolderItem::Of(item)) selectedFolders.insert(folder->Path());
  }
  QTreeWidgetItem* current = currentItem();
  std::string currentPath;
  if (const FolderItem* folder = FolderItem::Of(current)) {
    currentPath = folder->Path();
    current = nullptr;  // the row goes
  }
  const int scrolled = verticalScrollBar()->value();
  setSortingEnabled(false);
  for (ShortCutItem* row : rows_) {
    if (row->parent() != nullptr) row->parent()->removeChild(row);
    if (row->treeWidget() != nullptr) takeTopLevelItem(indexOfTopLevelItem(row));
  }
  clear();
  std::vector<Shortcut> records;
  records.reserve(rows_.size());
  for (const ShortCutItem* row : rows_) records.push_back(row->Record());
  folders_ = WholeFolders(folders_, records);
  const bool inFolders = Style::InForce().ShowsFolders();
  std::map<std::string, QTreeWidgetItem*, std::less<>> places{{"", invisibleRootItem()}};
  for (std::size_t i = 0; inFolders && i < folders_.size(); ++i) {
    auto* folder = new FolderItem(folders_[i].path);
    places.at(std::string(FolderAround(folders_[i].path)))->addChild(folder);
    places.emplace(folders_[i].path, folder);
    folder->setExpanded(folders_[i].open);
    folder->setSelected(selectedFolders.contains(folders_[i].path));
    if (!currentPath.empty() && currentPath == folders_[i].path) current = folder;
  }
  for (ShortCutItem* row : rows_) {
    places.at(inFolders ? row->Record().folder : "")->addChild(row);
    row->setSelected(selected.contains(row));
  }
  setRootIsDecorated(inFolders && !folders_.empty());
  if (current != nullptr) setCurrentItem(current, 0, QItemSelectionModel::NoUpdate);
  setSortingEnabled(true);
  ShowFilter();
  verticalScrollBar()->setValue(scrolled);
}

void ShortcutTree::Remove(ShortCutItem* row) {
  std::erase(rows_, row);
  delete row;
}

FolderItem* ShortcutTree::FolderAt(std::string_view path) {
  for (QTreeWidgetItemIterator i(this); *i != nullptr; ++i) {
    FolderItem* folder = FolderItem::Of(*i);
    if (folder != nullptr && folder->Path() == path) return folder;
  }
  return nullptr;
}

void ShortcutTree::NewFolder(const std::string& around) {
  std::string path;
  for (int number = 1; path.empty(); ++number) {
    const QString name = number == 1 ? tr("New Folder") : tr("New Folder %1").arg(number);
    path = FolderIn(around, ToBytes(name));
    if (std::ranges::find(folders_, path, &ShortcutFolder::path) != folders_.end()) path.clear();
  }
  if (CleanPath(path) != path) return Q_EMIT NameRefused(tr("The folders are too deep."));
  folders_.push_back({path});
  newest_ = path;
  for (ShortcutFolder& folder : folders_) folder.open |= folder.path == around;
  Arrange();
  FolderItem* folder = FolderAt(path);
  Select(folder);
  scrollToItem(folder);
  editItem(folder, ShortCutItem::kLabel);
  Q_EMIT Rearranged();
}

int ShortcutTree::CountIn(const std::string& path) const {
  return static_cast<int>(std::ranges::count_if(rows_, [&path](const ShortCutItem* row) {
    return !row->Record().folder.empty() && IsWithin(row->Record().folder, path);
  }));
}

void ShortcutTree::RemoveFolder(const std::string& path, bool contents) {
  const std::string around(FolderAround(path));
  std::erase_if(folders_, [&](const ShortcutFolder& folder) {
    return folder.path == path || (contents && IsWithin(folder.path, path));
  });
  for (ShortcutFolder& folder : folders_) {
    if (IsWithin(folder.path, path)) folder.path = MovedPath(folder.path, path, around);
  }
  const std::vector<ShortCutItem*> rows = rows_;
  for (ShortCutItem* row : rows) {
    if (row->Record().folder.empty() || !IsWithin(row->Record().folder, path)) continue;
    if (contents) {
      Remove(row);
    } else {
      row->SetFolder(MovedPath(row->Record().folder, path, around));
    }
  }
  Arrange();
  if (currentItem() == nullptr) Select(topLevelItem(0));
  Q_EMIT Rearranged();
}

void ShortcutTree::OpenChanged(QTreeWidgetItem* item, bool open) {
  const FolderItem* folder = FolderItem::Of(item);
  if (arranging_ || IsFiltered() || folder == nullptr) return;
  const auto known = std::ranges::find(folders_, folder->Path(), &ShortcutFolder::path);
  if (known != folders_.end()) known->open = open;
  if (!open) SelectVisible();
}

// The row takes what was typed before it is known whether it may.
void ShortcutTree::Edited(QTreeWidgetItem* item) {
  const FolderItem* folder = FolderItem::Of(item);
  if (arranging_ || folder == nullptr) return;
  const std::string path = folder->Path();
  const std::string name = ToBytes(item->text(ShortCutItem::kLabel).trimmed());
  // The row goes, which its editor has to outlive.
  QMetaObject::invokeMethod(
      this, [this, path, name] { NameFolder(path, name); }, Qt::QueuedConnection);
}

void ShortcutTree::NameFolder(const std::string& path, const std::string& name) {
  const std::string to = FolderIn(FolderAround(path), name);
  const bool taken =
      std::ranges::find(folders_, to, &ShortcutFolder::path) != folders_.end() && to != path;
  if (!IsFolderName(name) || taken) {
    Arrange();
    return Q_EMIT NameRefused(taken ? tr("There is a folder of that name already.")
                                    : tr("A folder needs a name, and that holds no “/”."));
  }
  if (to == path) return Arrange();
  for (ShortcutFolder& folder : folders_) {
    if (IsWithin(folder.path, path)) folder.path = MovedPath(folder.path, path, to);
  }
  for (ShortCutItem* row : rows_) {
    if (row->Record().folder.empty() || !IsWithin(row->Record().folder, path)) continue;
    row->SetFolder(MovedPath(row->Record().folder, path, to));
  }
  Arrange();
  Select(FolderAt(to));
  Q_EMIT Rearranged();
}

void ShortcutTree::SetFilter(const QString& text) {
  words_ = text.split(' ', Qt::SkipEmptyParts);
  ShowFilter();
  if (!IsFiltered()) return SelectVisible();
  const ShortCutItem* current = ShortCutItem::Of(currentItem());
  const bool found = current != nullptr && current->isSelected() && !current->isHidden();
  if (found) return scrollToItem(current);
  // The first shortcut that is found, so that Enter takes it.
  clearSelection();
  for (QTreeWidgetItemIterator i(this, QTreeWidgetItemIterator::NotHidden); *i != nullptr; ++i) {
    if (FolderItem::Of(*i) == nullptr) return Select(*i);
  }
}

void ShortcutTree::ShowFilter() {
  const QScopedValueRollback arranging(arranging_, true);
  for (int row = 0; row < topLevelItemCount(); ++row) ShowMatches(*topLevelItem(row));
  if (!IsFiltered()) {
    for (const ShortcutFolder& folder : folders_) {
      if (FolderItem* item = FolderAt(folder.path)) item->setExpanded(folder.open);
    }
  }
  viewport()->update();
}

bool ShortcutTree::ShowMatches(QTreeWidgetItem& item) const {
  const auto holds = [this](const std::string& text) {
    const QString shown = ToText(text);
    return std::ranges::all_of(words_, [&shown](const QString& word) {
      return shown.contains(word, Qt::CaseInsensitive);
    });
  };
  bool matches = false;
  if (const ShortCutItem* row = ShortCutItem::Of(&item)) {
    const Shortcut& record = row->Record();
    const Site& site = record.site;
    matches = holds(record.label + '\n' + site.host + '\n' + site.user + '\n' + site.path + '\n' +
                    record.folder);
  } else if (const FolderItem* folder = FolderItem::Of(&item)) {
    matches = holds(folder->Path());
  }
  for (int i = 0; i < item.childCount(); ++i) matches = ShowMatches(*item.child(i)) || matches;
  item.setHidden(!matches);
  if (IsFiltered() && item.childCount() > 0) item.setExpanded(true);
  return matches;
}

int ShortcutTree::ShownCount() const {
  return static_cast<int>(
      std::ranges::count_if(rows_, [](const ShortCutItem* row) { return !row->isHidden(); }));
}

void ShortcutTree::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Escape && state() != EditingState) return Q_EMIT Escaped();
  QTreeWidget::keyPressEvent(event);
}

void ShortcutTree::paintEvent(QPaintEvent* event) {
  QTreeWidget::paintEvent(event);
  if (!IsFiltered()) return;
  QTreeWidgetItemIterator shown(this, QTreeWidgetItemIterator::NotHidden);
  if (*shown != nullptr) return;
  QPainter painter(viewport());
  const EmptyState state{"search", tr("Nothing matches"), tr("Change or clear the search.")};
  state.Paint(painter, viewport()->rect(), palette());
}

void ShortcutTree::drawBranches(QPainter* painter, const QRect& rect,
                                const QModelIndex& index) const {
  constexpr int kSign = 16;
  const bool selected = selectionModel()->isSelected(index);
  if (selected) painter->fillRect(rect, palette().color(QPalette::Highlight));
  const QTreeWidgetItem* item = itemFromIndex(index);
  if (item->childCount() == 0) return;
  const QRectF place(rect.right() - (indentation() + kSign) / 2.0 + 1,
                     rect.y() + (rect.height() - kSign) / 2.0, kSign, kSign);
  PaintSymbol(
      *painter, place, item->isExpanded() ? "chevron-down" : "chevron-right",
      selected ? palette().color(QPalette::HighlightedText) : ToneOf(palette(), Tone::Secondary));
}

}  // namespace corvane
