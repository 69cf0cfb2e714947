#pragma once

#include <QMainWindow>
#include <QPointer>
#include <cstdint>
#include <string>
#include <string_view>

#include "kit/Message.h"
#include "sites/Shortcut.h"

class QAction;
class QLineEdit;

namespace corvane {

class ConnectionForm;
class HintLabel;
class ShortcutField;
struct ConnectHost;

/// The window in which the user states a server. What becomes of it and of the program when it is
/// closed, the program decides. GUI thread.
class StartWin : public QMainWindow {
  Q_OBJECT

 public:
  StartWin(ConnectHost& app, const QRect& frame);
  /// Stores the window's frame.
  ~StartWin() override;

  /// Builds the menus, that of the shortcuts too.
  void Init();

  /// What buttons, menus and other windows ask for.
  void MessageReceived(const Message& message);

  /// The recent connections are others now.
  void RecentChanged();

  [[nodiscard]] ShortcutField& CutMenu() { return *shortcuts_; }

 protected:
  void closeEvent(QCloseEvent* event) override;
  bool eventFilter(QObject* target, QEvent* event) override;

 private:
  // StartWinLayout.cpp
  void MakeViews();
  void MakeMenus();
  void MakeEditMenu();
  void MakeWindowsMenu();
  void MakeHelpMenu();
  void FitHeight();
  void MenusBeginning();
  void FocusMoved(QWidget* now);

  // StartWin.cpp
  void Connect();
  void ReadShortcuts();
  void ChooseShortcut(std::int32_t index);
  void Fill(const Shortcut& connection);
  bool PasteUrl(std::string_view text);
  void Copy();
  void Paste();

  ConnectHost& app_;
  bool passive_ = false;

  ConnectionForm* form_ = nullptr;
  ShortcutField* shortcuts_ = nullptr;
  HintLabel* hint_ = nullptr;
  int lastHeight_ = 0;  // that the contents asked for
  QAction* copy_ = nullptr;
  QAction* paste_ = nullptr;
  QPointer<QLineEdit> field_;  // has the focus, or had it when a menu took it
};

}  // namespace corvane
