#pragma once

#include <QMainWindow>
#include <functional>
#include <string_view>
#include <vector>

#include "kit/Message.h"

class QAction;
class QTreeWidget;

namespace corvane {

class ShortCutItem;
class TambleApp;

/// The list of saved connections. Changes stay in the window until they are saved. Deletes itself
/// when closed. GUI thread.
class ShortCutWindow : public QMainWindow {
  Q_OBJECT

 public:
  explicit ShortCutWindow(TambleApp& app);
  ~ShortCutWindow() override;

  void MessageReceived(const Message& message);

  /// Whether there is something to save.
  [[nodiscard]] bool Changed() const { return changed_; }
  /// Asks whether to save or to discard, does it, and goes on with `then`; not if saving fails.
  void AskAboutChanges(std::function<void()> then);

  [[nodiscard]] QTreeWidget& List() { return *list_; }

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  void MakeList();
  void MakeMenus();
  void MenusBeginning();
  void SetChanged(bool changed);
  [[nodiscard]] ShortCutItem* Row(int row) const;
  /// The first selected row, in the list's order; null without one.
  [[nodiscard]] ShortCutItem* FirstSelected() const;
  void EditSelected();
  void EditorClosed() { edited_ = nullptr; }
  void RemoveSelected();
  void CopySelected();
  void AddRow(std::string_view url);
  bool Save();

  TambleApp& app_;
  QTreeWidget* list_;
  ShortCutItem* edited_ = nullptr;  // the row that the open editor changes
  QAction* edit_ = nullptr;
  QAction* remove_ = nullptr;
  QAction* copy_ = nullptr;
  bool changed_ = false;
};

}  // namespace corvane
