#pragma once

#include <QObject>
#include <QPointer>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "app/desktop/Notifier.h"
#include "app/program/WorkerFactory.h"
#include "kit/Message.h"

namespace corvane {

class About;
class DownLoadWin;
class MWindow;
class PrefWindow;
class ShortCutEditWindow;
class ShortCutWindow;
class StartWin;
struct Shortcut;

/// The application: owns the connection window and the transfer window, and opens all others. Of
/// shortcut list, shortcut editor and preferences there is one at a time. GUI thread.
class TambleApp : public QObject {
  Q_OBJECT

 public:
  explicit TambleApp(WorkerFactory workers = WorkerFactory::Real());
  ~TambleApp() override;

  /// Settings, the two windows, and what the command line asked for.
  void ReadyToRun(const std::optional<Message>& open = {});

  /// 'OPNC' opens a browser window, 'NWST' adds a shortcut ("label", "index") to the menu of the
  /// connection window, 'SHLG' and 'SHMN' bring transfer and connection window forward. "startup"
  /// in 'OPNC' and 'SHMN' names the start that asked for it (StartupNotice).
  void PostMessage(const Message& message);
  void AboutRequested();

  /// Quits, once the user has said what is to become of running transfers and unsaved changes.
  void QuitRequested();
  /// Hides everything, tells all work to end, and ends the event loop.
  void Quit();
  [[nodiscard]] bool Quitting() const { return quitting_; }

  void ShowShortcuts();
  void ShowPreferences();
  /// The editor on `shortcut`, a new one or, with `change`, one of the list. An editor in which
  /// something was typed comes forward as it is. `opener` says where it stands.
  void ShowEditor(const Shortcut& shortcut, const QWidget& opener,
                  std::function<bool(const Shortcut&)> change = {});

  [[nodiscard]] StartWin& ConnectionWindow() { return *start_; }
  [[nodiscard]] DownLoadWin& Transfers() { return *transfers_; }
  [[nodiscard]] const QPointer<ShortCutWindow>& Shortcuts() const { return shortcuts_; }
  [[nodiscard]] const QPointer<PrefWindow>& Preferences() const { return preferences_; }
  [[nodiscard]] const QPointer<ShortCutEditWindow>& Editor() const { return editor_; }
  [[nodiscard]] Notifier& Notifications() { return notifier_; }
  [[nodiscard]] const WorkerFactory& Workers() const { return workers_; }

  /// The open browser windows, oldest first.
  [[nodiscard]] const std::vector<MWindow*>& WindowList() const { return windowList_; }
  void AddWindow(MWindow* window) { windowList_.push_back(window); }
  void RemoveWindow(MWindow* window) { std::erase(windowList_, window); }

 private:
  /// Opens a browser window, once the user has agreed to it where the settings are unread.
  void OpenBrowser(const Message& message);
  void Open(const Message& message);
  void WarnOfUnread(QWidget* window);
  /// Brings forward what a message asked for.
  static void Answer(const Message& message, QWidget* window);
  void ReadSettings();
  [[nodiscard]] int RunningTransfers() const;
  /// Asks about what stands in the editor and the preferences, then about the list of shortcuts,
  /// and quits.
  void AskAboutText();
  void AskAboutShortcuts();

  WorkerFactory workers_;
  Notifier notifier_;
  std::vector<MWindow*> windowList_;
  std::unique_ptr<StartWin> start_;
  std::unique_ptr<DownLoadWin> transfers_;
  QPointer<ShortCutWindow> shortcuts_;
  QPointer<ShortCutEditWindow> editor_;
  QPointer<PrefWindow> preferences_;
  std::unique_ptr<About> about_;
  std::string unread_;         // why the settings could not be read yet
  bool withDefaults_ = false;  // the user connects although the settings are unread
  bool askingToQuit_ = false;
  bool quitting_ = false;
};

}  // namespace corvane
