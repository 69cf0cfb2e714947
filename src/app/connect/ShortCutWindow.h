#pragma once

#include <QMainWindow>
#include <functional>
#include <vector>

#include "app/connect/EditedShortcut.h"
#include "kit/Message.h"
#include "sites/Shortcut.h"
#include "sites/ShortcutFolders.h"

class QAction;
class QLineEdit;
class QMenu;

namespace corvane {

class FolderItem;
class IconButton;
class ShortCutItem;
class ShortcutTree;
class StatusLine;
struct ShortcutHost;

/// The list of saved connections. Changes stay in the window until they are saved. Deletes itself
/// when closed. GUI thread.
class ShortCutWindow : public QMainWindow {
  Q_OBJECT

 public:
  ShortCutWindow(ShortcutHost& app, const std::vector<Shortcut>& shortcuts,
                 const std::vector<ShortcutFolder>& folders);
  /// Keeps which folders are open.
  ~ShortCutWindow() override;

  void MessageReceived(const Message& message);

  /// Whether there is something to save.
  [[nodiscard]] bool Changed() const { return changed_; }
  /// Asks whether to save or to discard, does it, and goes on with `then`; not if the user
  /// dismisses the question or saving fails.
  void AskAboutChanges(std::function<void()> then);

  /// Stores the list and goes on with `then`; asks first where that loses stored entries that
  /// cannot be read.
  void Save(std::function<void()> then = {});

  /// Puts these behind what there is, to be saved; the status says `word`.
  void TakeImported(const std::vector<Shortcut>& shortcuts,
                    const std::vector<ShortcutFolder>& folders, const QString& word);
  /// The shortcuts in the order of the menu, as they are in the window.
  [[nodiscard]] std::vector<Shortcut> Records() const;
  [[nodiscard]] ShortcutHost& Host() const { return app_; }
  void ShowStatus(const QString& text);

  [[nodiscard]] ShortcutTree& List() { return *list_; }

 protected:
  void closeEvent(QCloseEvent* event) override;
  bool eventFilter(QObject* search, QEvent* event) override;

 private:
  void MakeList();
  QWidget* MakeToolBar();
  QWidget* MakeSearch(QWidget* bar);
  void SetChanged(bool changed);
  /// Shows how many rows there are and which of them have keys.
  void RowsChanged();

  // ShortCutWindowMenus.cpp
  void MakeMenus();
  void MakeFileMenu();
  void MakeEditMenu();
  void ShowContextMenu(const QPoint& place);
  void MenusBeginning();
  void FillMoveMenu();

  // ShortCutWindowRows.cpp
  void NewShortcut();
  /// The first selected row that is a shortcut; null without one.
  [[nodiscard]] ShortCutItem* FirstSelected() const;
  void Activate();
  void EditSelected();
  bool TakeOver(int id, const Shortcut& changed);
  void Connect();
  void RemoveSelected();
  void RemoveShortcut(ShortCutItem* item);
  void RemoveFolder(const FolderItem& folder);
  void RefuseLast();
  void RenameFolder();
  void CopySelected();
  void AddRow(const Message& added);
  void Search(const QString& text);

  // ShortCutWindowSaving.cpp
  /// What is being saved, as it was when that began.
  struct Sent {
    std::function<void()> then{};
    int changes = 0;
    std::vector<int> ids{};
    std::vector<EditedShortcut> rows{};
    std::vector<ShortcutFolder> folders{};
  };
  void Store(std::function<void()> then);
  /// Stores the list whose passwords are kept now.
  void StoreAll(const Sent& sent, const std::vector<Shortcut>& shortcuts, const Text& word);

  ShortcutHost& app_;
  ShortcutTree* list_;
  QLineEdit* search_ = nullptr;
  QAction* new_ = nullptr;
  QAction* newFolder_ = nullptr;
  QAction* connect_ = nullptr;
  QAction* edit_ = nullptr;
  QAction* rename_ = nullptr;
  QAction* remove_ = nullptr;
  QAction* copy_ = nullptr;
  QAction* up_ = nullptr;
  QAction* down_ = nullptr;
  QMenu* moveTo_ = nullptr;
  IconButton* editButton_ = nullptr;
  IconButton* removeButton_ = nullptr;
  StatusLine* status_;
  bool changed_ = false;
  int changes_ = 0;      // how many there have been
  bool saving_ = false;  // passwords are on their way to where they are kept
  bool asking_ = false;
  std::function<void()> then_;  // what goes on once the user has answered
};

}  // namespace corvane
