#pragma once

#include <QMainWindow>
#include <functional>
#include <vector>

#include "app/connect/EditedShortcut.h"
#include "kit/Message.h"
#include "sites/Shortcut.h"

class QAction;
class QTreeWidget;

namespace corvane {

class IconButton;
class ShortCutItem;
class StatusLine;
struct ShortcutHost;

/// The list of saved connections. Changes stay in the window until they are saved. Deletes itself
/// when closed. GUI thread.
class ShortCutWindow : public QMainWindow {
  Q_OBJECT

 public:
  ShortCutWindow(ShortcutHost& app, const std::vector<Shortcut>& shortcuts);
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

  [[nodiscard]] QTreeWidget& List() { return *list_; }

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  void MakeList(const std::vector<Shortcut>& shortcuts);
  void MakeMenus();
  QWidget* MakeToolBar();
  void ShowContextMenu(const QPoint& place);
  void MenusBeginning();
  void NewShortcut();
  void SetChanged(bool changed);
  /// Shows how many rows there are and which of them have keys.
  void RowsChanged();
  /// The rows in the order of the menu.
  [[nodiscard]] std::vector<ShortCutItem*> InMenuOrder() const;
  [[nodiscard]] ShortCutItem* Row(int row) const;
  /// The first selected row, in the list's order; null without one.
  [[nodiscard]] ShortCutItem* FirstSelected() const;
  void Select(ShortCutItem* item);
  void EditSelected();
  bool TakeOver(int id, const Shortcut& changed);
  void RemoveSelected();
  void CopySelected();
  void AddRow(const Message& added);

  // ShortCutWindowSaving.cpp
  /// What is being saved, as it was when that began.
  struct Sent {
    std::function<void()> then{};
    int changes = 0;
    std::vector<int> ids{};
    std::vector<EditedShortcut> rows{};
  };
  void Store(std::function<void()> then);
  /// Stores the list whose passwords are kept now.
  void StoreAll(const Sent& sent, const std::vector<Shortcut>& shortcuts, const Text& word);

  ShortcutHost& app_;
  QTreeWidget* list_;
  QAction* new_ = nullptr;
  QAction* edit_ = nullptr;
  QAction* remove_ = nullptr;
  QAction* copy_ = nullptr;
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
