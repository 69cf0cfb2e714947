#pragma once

#include <QPointer>
#include <functional>
#include <vector>

#include "app/connect/EditedShortcut.h"
#include "kit/Message.h"
#include "kit/Text.h"
#include "sites/Shortcut.h"

class QWidget;

namespace corvane {

class ShortCutWindow;
class StartWin;

/// What the connection window needs of the program around it. GUI thread.
struct ConnectHost {
  virtual ~ConnectHost() = default;

  /// Takes 'OPNC' and 'SHLG'.
  virtual void PostMessage(const Message& message) = 0;
  virtual void ShowShortcuts() = 0;
  virtual void ShowPreferences() = 0;
  virtual void AboutRequested() = 0;
  /// Opens the manual; alerts stand over `window`.
  virtual void ShowManual(QWidget* window) = 0;
  virtual void QuitRequested() = 0;
  /// The user closes the connection window, which stays as it is by itself.
  virtual void ConnectionWindowClosing() = 0;
  /// The open browser windows, oldest first.
  [[nodiscard]] virtual std::vector<QWidget*> BrowserWindows() const = 0;
};

/// What the shortcut windows need of the program around them. GUI thread.
struct ShortcutHost {
  virtual ~ShortcutHost() = default;

  /// Takes 'NWST' and 'OPNC'.
  virtual void PostMessage(const Message& message) = 0;
  /// The editor on `shortcut`, a new one or, with `change`, one of the list. An editor in which
  /// something was typed comes forward as it is. `opener` says where it stands.
  virtual void ShowEditor(const Shortcut& shortcut, const QWidget& opener,
                          std::function<bool(const Shortcut&)> change) = 0;
  /// Keeps the passwords of shortcuts that are to be saved. `then` gets them as they are to be
  /// stored, and what the user should know of their passwords; at once or later.
  virtual void KeepPasswords(
      std::vector<EditedShortcut> shortcuts,
      std::function<void(std::vector<Shortcut> shortcuts, const Text& word)> then) = 0;
  /// What was kept for shortcuts of `before`, and for none of `now`, goes.
  virtual void ForgetPasswords(const std::vector<Shortcut>& before,
                               const std::vector<Shortcut>& now) = 0;
  /// Finds the passwords that are kept for shortcuts. `then` gets them with those that were found,
  /// and how many were not; at once or later.
  virtual void FindPasswords(
      std::vector<Shortcut> shortcuts,
      std::function<void(std::vector<Shortcut> shortcuts, int missing)> then) = 0;
  /// Whether passwords go to the keyring; `then` hears it at once or later.
  virtual void AskWhetherKept(std::function<void(bool)> then) = 0;
  [[nodiscard]] virtual StartWin& ConnectionWindow() = 0;
  /// The list of shortcuts; null while it is not open.
  [[nodiscard]] virtual const QPointer<ShortCutWindow>& Shortcuts() const = 0;
};

}  // namespace corvane
