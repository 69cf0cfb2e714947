#pragma once

#include <QMainWindow>
#include <QPointer>
#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "kit/Message.h"
#include "util/Shortcut.h"

class QAction;
class QCheckBox;
class QLineEdit;
class QMenu;

namespace corvane {

class Password;
class ShortcutField;
class TambleApp;

/// The window in which the user states a server. Closing it quits the program. GUI thread.
class StartWin : public QMainWindow {
  Q_OBJECT

 public:
  StartWin(TambleApp& app, const QRect& frame);
  /// Stores the window's frame.
  ~StartWin() override;

  /// Builds the menus, that of the shortcuts too.
  void Init();

  /// What buttons, menus and other windows ask for.
  void MessageReceived(const Message& message);

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
  QLineEdit* Prepare(QLineEdit* field, const char* name, const QString& accessible);
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

  TambleApp& app_;
  Shortcut filled_;  // the bytes that the fields were filled with
  bool passive_ = false;

  QLineEdit* host_ = nullptr;
  QLineEdit* user_ = nullptr;
  Password* password_ = nullptr;
  QLineEdit* path_ = nullptr;
  QLineEdit* port_ = nullptr;
  QCheckBox* passiveBox_ = nullptr;
  ShortcutField* shortcuts_ = nullptr;
  QAction* copy_ = nullptr;
  QAction* paste_ = nullptr;
  QPointer<QLineEdit> field_;  // has the focus, or had it when a menu took it
};

}  // namespace corvane
