#pragma once

#include <QMainWindow>
#include <QPointer>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "app/browser/MWListItem.h"
#include "app/transfers/TransferRequest.h"
#include "kit/Looper.h"
#include "kit/Message.h"
#include "remote/Site.h"

class QAction;
class QCheckBox;
class QFileDialog;
class QGroupBox;
class QLabel;
class QLineEdit;
class QMenu;
class QPushButton;

namespace corvane {

class BrowserLink;
class DirListView;
class NewDir;
class RenameWin;
class SmallView;
class TambleApp;
class TransferItem;
class TransferPane;
class ViewerLink;
class WindowLog;

/// A browser window: one FTP connection, its listing and its commands. GUI thread.
///
/// Owns its looper's start and end; deletes itself when closed. What the connection tells it comes
/// through a BrowserLink, which outlives it.
class MWindow : public QMainWindow {
  Q_OBJECT

 public:
  /// Starts connecting at once; the caller shows the window.
  MWindow(TambleApp& app, const QRect& frame, Site connection);
  ~MWindow() override;

  /// Menu items, buttons, the listing and the connection speak to the window in messages.
  void MessageReceived(const Message& message);

  /// Lets go of the connection: whatever it does ends in the background.
  void Disconnect();

  // From the link, in the order in which the connection said it.
  void ShowStatus(std::string_view text);
  void AppendLog(std::string_view text);
  void ShowPath(std::string_view path);
  void GetRidofListing();
  void AddRows(std::vector<MWListItem> items);
  void ListingEnded(std::size_t count);
  void RemoveRow(const std::string& name);
  void RenameRow(const std::string& from, const std::string& to, const std::string& directory);
  void ChangeValues(const std::string& name, std::int64_t size);
  void OpenViewer(const std::shared_ptr<ViewerLink>& link, std::string_view title);

  /// Appends to the log a bounded piece at a time, however much it is.
  void LogLater(std::string_view text);

  /// Downloads into `folder`, raw bytes, once it is known to be there; asks where to when it is
  /// empty.
  void DownloadInto(const std::string& folder, DownloadRequest request);

  [[nodiscard]] DirListView& Listing() { return *listing_; }
  /// Whether a transfer runs on this window's own connection.
  [[nodiscard]] bool IsTransferring() const;
  [[nodiscard]] const std::string& CurrentDirectory() const { return currentDirectory_; }

 protected:
  void closeEvent(QCloseEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dragMoveEvent(QDragMoveEvent* event) override;
  void dropEvent(QDropEvent* event) override;
  bool eventFilter(QObject* object, QEvent* event) override;

 private:
  // MWindowLayout.cpp
  void MakeViews();
  void MakeMenus();
  void SetLeastSize();
  QWidget* MakeStatusBox();
  QAction* AddCommand(QMenu* menu, const QString& text, const char* key, const Message& message);
  void MakeWindowsMenu();
  void MenusBeginning();
  void ListingEnabled(bool enabled);

  // MWindow.cpp
  void StartLooper();
  void FailToStart(const QString& why);
  /// False, with a beep, when the connection takes no more requests.
  bool SendToLooper(const Message& message);
  void ChangeDirectoryTo(const std::string& name);
  void ChangeDirectory();
  void PathEntered();
  void AddShortcut();
  void OpenSelected();
  void CopySelected();
  void SelectEverything();
  void FinishedUpload(const Message& message);
  void FatalError(const Message& message);
  void Warn(const QString& text, const QString& title = tr("Warning"));

  // MWindowCommands.cpp
  void DeleteRequested();
  void DeleteEntries(const Message& entries);
  void ShowNewDir();
  void CreateDirectory();
  void ShowRename();
  void RenameRequested();
  void ViewFile();
  void OfferToConnect(const QString& text);
  /// Says why no data connection came about, and offers a new login that makes them the other way.
  void OfferOtherMode(const Message& warning, bool passive);
  /// Warns when a transfer runs on this connection.
  [[nodiscard]] bool IsBusy();

  // MWindowTransfers.cpp
  void DownloadRequested(const Message& message);
  /// What is selected now, as a request without a target. Of several, names that cannot be local
  /// ones are left out and go to `refused`.
  [[nodiscard]] DownloadRequest RequestForSelection(QStringList& refused);
  void WarnOfNames(const QStringList& refused);
  /// Asks for the target of a request.
  void SaveDialogBox(DownloadRequest request);
  void ChooseUploads();
  void Upload(const QStringList& paths);
  void Upload(std::vector<std::string> paths);
  /// To the transfer window or, where the box is ticked, to this window's own connection.
  void HandOver(DownloadRequest request);
  void HandOver(UploadRequest request);
  void TransferHere(transferStruct description);
  void TransferSettled(const TransferItem& item);

  // MWindowDrag.cpp
  /// Begins a drag of what is selected.
  void DragRows(int pressed);
  [[nodiscard]] bool Takes(const QDropEvent& drop) const;

  // MWindowExisting.cpp
  void DownloadOne(DownloadRequest request, const std::string& localName);
  void DownloadSeveral(DownloadRequest request);
  void AskAndHandOver(DownloadRequest request, std::int64_t localSize);

  TambleApp& app_;
  const Site connection_;
  std::shared_ptr<BrowserLink> link_;
  std::shared_ptr<Looper> looper_;
  std::string currentDirectory_;
  int openWarnings_ = 0;
  bool closingForError_ = false;
  std::string renaming_;    // the name in the rename window, as the server has it
  std::string renamingIn_;  // the directory of that entry
  bool connectedOnce_ = false;
  bool offering_ = false;  // to connect again, in this mode or the other

  QLineEdit* path_ = nullptr;
  QLabel* status_ = nullptr;
  DirListView* listing_ = nullptr;
  SmallView* count_ = nullptr;
  QCheckBox* sameConnection_ = nullptr;
  TransferPane* pane_ = nullptr;
  QPushButton* download_ = nullptr;
  QPushButton* upload_ = nullptr;
  WindowLog* log_ = nullptr;
  NewDir* newDir_ = nullptr;        // from its first use on
  RenameWin* renameWin_ = nullptr;  // from its first use on
  QMenu* commands_ = nullptr;
  QAction* copy_ = nullptr;
  QAction* selectAll_ = nullptr;
  QAction* downloadItem_ = nullptr;
  QAction* changeDir_ = nullptr;
  QAction* deleteItem_ = nullptr;
  QAction* rename_ = nullptr;
  QAction* viewFile_ = nullptr;
  QPointer<QFileDialog> openPanel_;
  QPointer<QFileDialog> savePanel_;
  QPointer<QWidget> lastFocus_;  // path field or listing, whichever had the focus last
};

}  // namespace corvane
