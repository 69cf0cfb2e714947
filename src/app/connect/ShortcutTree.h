#pragma once

#include <QTreeWidget>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "sites/Shortcut.h"
#include "sites/ShortcutFolders.h"

namespace corvane {

class FolderItem;
class ShortCutItem;

/// The rows of the shortcut list: in their folders or, in a style without, in one list. Keeps the
/// order of the menu, whatever the eye has sorted. GUI thread.
class ShortcutTree : public QTreeWidget {
  Q_OBJECT

 public:
  explicit ShortcutTree(QWidget* parent);

  /// Puts these behind what there is.
  void Add(const std::vector<Shortcut>& shortcuts, const std::vector<ShortcutFolder>& folders);
  /// The rows in the order of the menu.
  [[nodiscard]] const std::vector<ShortCutItem*>& InMenuOrder() const { return rows_; }
  [[nodiscard]] const std::vector<ShortcutFolder>& Folders() const { return folders_; }
  /// The row of that number (ShortCutItem::Id); null where it has gone.
  [[nodiscard]] ShortCutItem* Find(int id) const;
  /// The path of the folder in which the current row stands, or which it is.
  [[nodiscard]] std::string CurrentFolder() const;
  /// The selected rows that can be seen, from above.
  [[nodiscard]] std::vector<QTreeWidgetItem*> Selected() const;
  void Select(QTreeWidgetItem* item);
  /// Brings rows and folders to where they belong by now.
  void Arrange();

  void Remove(ShortCutItem* row);
  /// Makes a folder in the one of that path and lets the user name it.
  void NewFolder(const std::string& around);
  /// Removes a folder, and what it holds or only itself.
  void RemoveFolder(const std::string& path, bool contents);
  /// How many shortcuts a folder holds at whatever depth.
  [[nodiscard]] int CountIn(const std::string& path) const;

  /// Puts what is selected into the folder of that path.
  void MoveInto(const std::string& folder);
  /// Puts what is selected one place up or down among its kind in its folder.
  void MoveBy(int step);

  /// Shows only what holds every word of `text` somewhere.
  void SetFilter(const QString& text);
  [[nodiscard]] bool IsFiltered() const { return !words_.isEmpty(); }
  [[nodiscard]] int ShownCount() const;

 Q_SIGNALS:
  /// Rows were moved, or folders made, moved, called otherwise or removed.
  void Rearranged();
  /// A name was not taken, and why.
  void NameRefused(const QString& why);
  void Escaped();

 protected:
  void paintEvent(QPaintEvent* event) override;
  void drawBranches(QPainter* painter, const QRect& rect, const QModelIndex& index) const override;
  void keyPressEvent(QKeyEvent* event) override;
  [[nodiscard]] QStringList mimeTypes() const override;
  [[nodiscard]] QMimeData* mimeData(const QList<QTreeWidgetItem*>& items) const override;
  void dropEvent(QDropEvent* event) override;

 private:
  /// Where rows go: into a folder and, with `beside`, before or behind that row.
  struct Place {
    std::string folder;
    QTreeWidgetItem* beside = nullptr;
    bool behind = false;
  };
  struct Moving {
    std::vector<ShortCutItem*> rows;
    std::vector<std::string> folders;
  };

  FolderItem* FolderAt(std::string_view path);
  /// Selects the closed folder that holds the current row, or a row where none is selected.
  void SelectVisible();
  void ShowFilter();
  bool ShowMatches(QTreeWidgetItem& item) const;
  void OpenChanged(QTreeWidgetItem* item, bool open);
  void Edited(QTreeWidgetItem* item);
  void NameFolder(const std::string& path, const std::string& name);

  // ShortcutTreeMoves.cpp
  [[nodiscard]] Moving ToMove() const;
  [[nodiscard]] Place PlaceOf(QDropEvent* event);
  void MoveTo(const Place& place);
  bool MoveFolder(const std::string& path, const std::string& around);
  void OrderRows(const std::vector<ShortCutItem*>& moved, const ShortCutItem* beside, bool behind);
  void OrderFolders(const std::vector<std::string>& moved, const std::string& beside, bool behind);

  std::vector<ShortCutItem*> rows_;
  std::vector<ShortcutFolder> folders_;
  QStringList words_;       // that every row shown holds
  bool arranging_ = false;  // rows change by themselves
  std::string newest_;      // the folder that has no name of the user's yet
};

}  // namespace corvane
