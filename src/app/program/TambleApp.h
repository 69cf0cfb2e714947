#pragma once

#include <QObject>
#include <QPointer>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "app/browser/BrowserHost.h"
#include "app/connect/ConnectHost.h"
#include "app/desktop/Notifier.h"
#include "app/edited/EditedHost.h"
#include "app/program/Passwords.h"
#include "app/program/TrustedCertificates.h"
#include "app/transfers/TransferHost.h"
#include "kit/Message.h"
#include "queue/QueueStore.h"
#include "settings/StoredSettings.h"

namespace corvane {

class About;
class DownLoadWin;
class EditedWindow;
class KnownServers;
class MWindow;
class PrefWindow;
class ShortCutEditWindow;

/// The application: owns the connection window and the transfer window, and opens all others. Of
/// shortcut list, shortcut editor and preferences there is one at a time. GUI thread.
class TambleApp : public QObject,
                  public BrowserHost,
                  public TransferHost,
                  public ConnectHost,
                  public ShortcutHost,
                  public EditedHost {
  Q_OBJECT

 public:
  /// Without `secrets` passwords stand in the program's own files; `known` are the servers that the
  /// workers ask; `queue` keeps the transfers that are not done, where it is not null.
  explicit TambleApp(WorkerFactory workers, std::shared_ptr<SecretStore> secrets = {},
                     std::shared_ptr<KnownServers> known = {},
                     std::shared_ptr<QueueStore> queue = {});
  ~TambleApp() override;

  /// Settings, the two windows, and what the command line asked for.
  void ReadyToRun(const std::optional<Message>& open = {});

  /// 'OPNC' opens a browser window, 'NWST' adds a shortcut ("label", "index") to the menu of the
  /// connection window, 'SHLG', 'SHED' and 'SHMN' bring the window of transfers, of edited files
  /// and of connections forward. "startup" in 'OPNC' and 'SHMN' names the start that asked for it
  /// (StartupNotice).
  void PostMessage(const Message& message) override;
  void AboutRequested() override;
  void ShowManual(QWidget* window) override;

  /// Quits, once the user has said what is to become of running transfers and unsaved changes.
  void QuitRequested() override;
  /// Hides the connection window, and quits where no other window would be left.
  void ConnectionWindowClosing() override;
  /// Hides everything, tells all work to end, and ends the event loop.
  void Quit();
  [[nodiscard]] bool Quitting() const { return quitting_; }

  void ShowShortcuts() override;
  void ShowPreferences() override;
  void ShowEditor(const Shortcut& shortcut, const QWidget& opener,
                  std::function<bool(const Shortcut&)> change) override;
  void ShowEditor(const Shortcut& shortcut, const QWidget& opener) override;
  void FindPassword(QWidget* window, const Site& site,
                    std::function<void(std::optional<Site>, bool)> found) override;
  void Diagnose(QWidget* window, const Site& site,
                std::function<void(const Site&)> connect) override;
  void ConnectionStands(const Site& site, bool keep,
                        std::function<void(const Text&)> tell) override;
  void KeepPasswords(std::vector<EditedShortcut> shortcuts,
                     std::function<void(std::vector<Shortcut>, const Text&)> then) override;
  void FindPasswords(std::vector<Shortcut> shortcuts,
                     std::function<void(std::vector<Shortcut>, int)> then) override;
  void ForgetPasswords(const std::vector<Shortcut>& before,
                       const std::vector<Shortcut>& now) override;
  void AskWhetherKept(std::function<void(bool)> then) override;

  /// Sees windows go: the last one ends the program.
  bool eventFilter(QObject* target, QEvent* event) override;

  void Transfer(transferStruct description, TransferListener listener) override;
  [[nodiscard]] TransferView* MakeTransferView(QWidget* parent) override;
  void TransferEnded(const TransferNews& news) override { notifier_.Ended(news); }
  /// The network is back, or the machine has slept.
  void NetworkReturned();
  void ShowProperties(EntriesHost& host, const std::string& directory,
                      std::vector<RemoteEntry> entries, QWidget* browser) override;
  void ShowFind(EntriesHost& host, const std::string& directory, QWidget* browser) override;
  void CompleteSite(QWidget* window, const Site& site,
                    std::function<void(std::optional<Site>)> found) override;
  void OpenFile(QWidget* window, const std::string& path) override;
  void OpenRemote(std::vector<EditRequest> requests) override;
  void EditFile(QWidget* window, const std::string& path) override;
  void TryTransfersNow() override;
  void CancelTransfers(const std::string& folder) override;
  void FindDiffProgram(std::function<void(std::string)> found) override;
  void CompareFiles(QWidget* window, const std::string& program, const std::string& one,
                    const std::string& other) override;
  void RevealFile(QWidget* window, const std::string& path) override;

  [[nodiscard]] StartWin& ConnectionWindow() override { return *start_; }
  [[nodiscard]] DownLoadWin& Transfers() { return *transfers_; }
  [[nodiscard]] EditedWindow& Edited() { return *edited_; }
  [[nodiscard]] const QPointer<ShortCutWindow>& Shortcuts() const override { return shortcuts_; }
  [[nodiscard]] const QPointer<PrefWindow>& Preferences() const { return preferences_; }
  [[nodiscard]] const QPointer<ShortCutEditWindow>& Editor() const { return editor_; }
  [[nodiscard]] const WorkerFactory& Workers() const override { return workers_; }
  [[nodiscard]] std::vector<QWidget*> BrowserWindows() const override;
  /// The open browser windows, oldest first.
  [[nodiscard]] const std::vector<MWindow*>& WindowList() const { return windowList_; }

 private:
  /// Opens a browser window, once the user has agreed to it where the settings are unread.
  void OpenBrowser(const Message& message);
  void Open(const Message& message);
  /// Moves a new browser window so that it covers no other one.
  void Cascade(QWidget& window) const;
  void WarnOfUnread(QWidget* window);
  /// Brings forward what a message asked for.
  static void Answer(const Message& message, QWidget* window);
  void ReadSettings();
  /// Makes the window of edited files; what they left of `kept` is no row of the transfer list.
  void MakeEdited(std::vector<QueueStore::Row>& kept);
  /// Limits of transfers and of their speed are as the settings say.
  void FollowSettings();
  /// Adds what the settings say of every connection.
  static void Furnish(Site& site);
  /// What quitting would end or lose, a line for each.
  [[nodiscard]] QStringList WouldBeLost() const;
  [[nodiscard]] static bool AnyWindowOpen(const QWidget* except = nullptr);
  void QuitWithoutWindows();

  WorkerFactory workers_;
  Passwords passwords_;
  const std::shared_ptr<KnownServers> known_;
  const std::shared_ptr<QueueStore> queue_;
  std::optional<StoredSettings::GatheredFrames> frames_;  // from the start on, stored at the end
  Notifier notifier_;
  std::vector<MWindow*> windowList_;
  std::unique_ptr<StartWin> start_;
  std::unique_ptr<DownLoadWin> transfers_;
  std::unique_ptr<EditedWindow> edited_;
  QPointer<ShortCutWindow> shortcuts_;
  QPointer<ShortCutEditWindow> editor_;
  QPointer<PrefWindow> preferences_;
  std::unique_ptr<About> about_;
  Text unread_;                // why the settings could not be read yet
  bool withDefaults_ = false;  // the user connects although the settings are unread
  bool askingToQuit_ = false;
  bool quitting_ = false;
};

}  // namespace corvane
