#pragma once

#include <QMainWindow>
#include <QPointer>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "app/browser/BrowserEvents.h"
#include "remote/Site.h"

class QMimeData;

namespace corvane {

class BrowserAlerts;
class BrowserCommands;
class BrowserSession;
class BrowserTransfers;
class BrowserView;
class ConnectionProgress;
class DirListView;
class EntryCommands;
class EntryWindows;
class Navigation;
class Padlock;
class WindowLog;
struct BrowserCommand;
struct BrowserHost;
struct TransferNews;

/// A browser window: it shows one FTP connection and takes the user's commands for it. GUI thread.
///
/// Deletes itself when closed. The parts have a duty each: BrowserSession the connection,
/// BrowserView what is seen, ConnectionProgress how the connection comes and goes, BrowserCommands
/// menus and keys, Navigation, EntryCommands and BrowserTransfers what the commands do.
class MWindow : public QMainWindow, public BrowserEvents {
  Q_OBJECT

 public:
  /// Starts connecting at once; the caller shows the window. `app` outlives it.
  MWindow(BrowserHost& app, const QRect& frame, Site site);
  ~MWindow() override;

  [[nodiscard]] BrowserSession& Session() { return *session_; }
  [[nodiscard]] const BrowserSession& Session() const { return *session_; }
  [[nodiscard]] BrowserView& View() { return *view_; }
  [[nodiscard]] DirListView& Listing();
  [[nodiscard]] BrowserTransfers& Transfers() { return *transfers_; }
  [[nodiscard]] Navigation& Ways() { return *navigation_; }
  [[nodiscard]] EntryCommands& Entries() { return *entries_; }

  /// Whether a transfer runs on this window's own connection.
  [[nodiscard]] bool IsTransferring() const;
  /// What closing the window would end, for the user to read; empty when that is nothing.
  [[nodiscard]] QString WouldEnd() const;
  /// Lets go of the connection: whatever it does ends in the background.
  void Disconnect();
  /// Closes without a question.
  void CloseNow();
  /// Shows a warning; while several wait for an answer already, the log gets it.
  void Warn(const QString& text, const QString& title = tr("Warning"));

  void MessageReceived(const Message& message) override;
  void ShowStatus(const Text& text) override;
  void ShowStep(const ConnectStep& step) override;
  void ShowProtection(const Protection& protection) override;
  void Ask(const std::shared_ptr<UserQuestion>& question) override;
  void AppendLog(std::string_view text) override;
  void ShowPath(std::string_view path) override;
  void GetRidofListing() override;
  void AddRows(NewRows rows) override;
  void ListingEnded(bool whole) override;
  void RemoveRow(const std::string& name, const std::string& directory) override;
  void RenameRow(const std::string& from, const std::string& to,
                 const std::string& directory) override;
  void UpdateRow(const MWListItem& item, const std::string& directory) override;
  void ChangeValues(const std::string& name, std::int64_t size) override;
  void OpenViewer(const std::shared_ptr<ViewerLink>& link, const Text& title) override;

 Q_SIGNALS:
  /// The server has it no more; raw bytes. The name may be a path below the directory.
  void EntryGone(const std::string& directory, const std::string& name);

 protected:
  void closeEvent(QCloseEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dragMoveEvent(QDragMoveEvent* event) override;
  void dropEvent(QDropEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;

 private:
  void MakeView();
  void MakeMenus();
  void RunCommand(const BrowserCommand& command);
  /// Enables what can be done now.
  void MenusBeginning();
  void ListingEnabled(bool enabled);
  [[nodiscard]] bool Takes(const QDropEvent& drop) const;

  void ConnectionChanged();
  void ShowTitle();
  bool FilesDropped(const QMimeData& offer, const std::string& directory);
  void AddShortcut();
  void OpenSelected();
  void OpenInNewWindow();
  void CopySelected();
  void SelectEverything();
  void DownloadRequested(const Message& message);
  void FinishedUpload(const Message& message);
  void TransferSettled(const TransferNews& news);
  void TryAgain(const Site& changed);
  void Diagnose();
  /// Connects to what a diagnosis has mended.
  void ConnectTo(const Site& site);

  BrowserHost& app_;
  std::unique_ptr<BrowserSession> session_;
  WindowLog* log_;
  BrowserView* view_ = nullptr;
  BrowserCommands* commands_ = nullptr;
  EntryCommands* entries_ = nullptr;
  EntryWindows* entryWindows_ = nullptr;
  BrowserTransfers* transfers_ = nullptr;
  BrowserAlerts* alerts_ = nullptr;
  Navigation* navigation_ = nullptr;
  ConnectionProgress* progress_ = nullptr;
  Padlock* padlock_ = nullptr;
  bool canCopy_ = false;   // the server copies files
  bool mayClose_ = false;  // without a question
  bool closed_ = false;
  QPointer<QWidget> lastFocus_;  // path field or listing, whichever had the focus last
};

}  // namespace corvane
