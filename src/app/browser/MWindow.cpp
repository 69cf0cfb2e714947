#include "app/browser/MWindow.h"

#include <QApplication>
#include <QClipboard>
#include <QCloseEvent>
#include <QDragEnterEvent>
#include <QLineEdit>
#include <QMenuBar>
#include <QMimeData>
#include <utility>

#include "app/browser/BrowserAlerts.h"
#include "app/browser/BrowserCommands.h"
#include "app/browser/BrowserHost.h"
#include "app/browser/BrowserSession.h"
#include "app/browser/BrowserTransfers.h"
#include "app/browser/BrowserView.h"
#include "app/browser/DirListView.h"
#include "app/browser/DragData.h"
#include "app/browser/EntryCommands.h"
#include "app/browser/LocalDrop.h"
#include "app/browser/MViewFile.h"
#include "app/browser/WindowLog.h"
#include "app/shared/Frames.h"
#include "app/shared/ScreenText.h"
#include "app/shared/Shown.h"
#include "app/shared/TransferView.h"
#include "app/shared/Windows.h"
#include "remote/RemotePath.h"
#include "sites/Shortcut.h"
#include "util/Url.h"

namespace corvane {

MWindow::MWindow(BrowserHost& app, const QRect& frame, Site site)
    : app_(app), session_(std::make_unique<BrowserSession>(*this, std::move(site))) {
  const QString host = ToText(session_->To().host);
  setAttribute(Qt::WA_DeleteOnClose);
  setWindowTitle(tr("Connected To: %1").arg(host));
  setMaximumSize(4000, 4000);
  setGeometry(frame);
  log_ = new WindowLog(this, tr("Log Window: %1").arg(host));
  alerts_ = new BrowserAlerts(*this);
  entries_ = new EntryCommands(*this);
  transfers_ = new BrowserTransfers(app_, *this);
  MakeView();
  MakeMenus();
  view_->SetLeastHeight(menuBar()->sizeHint().height());
  setMinimumWidth(420);
  session_->Begin(app_.Workers());
}

MWindow::~MWindow() {
  // The base class still moves the focus and takes the views apart.
  qApp->disconnect(this);
  view_->Listing().disconnect(this);
  Disconnect();
  if (!closed_) Frames::Keep(kConnectionFrame, *this);
}

void MWindow::MakeView() {
  view_ = new BrowserView(this, app_.MakeTransferView(this));
  setCentralWidget(view_);
  view_->Path().setText(ToText(session_->To().path));
  view_->Path().installEventFilter(this);
  setAcceptDrops(true);
  DirListView* listing = &view_->Listing();
  connect(&view_->Path(), &QLineEdit::returnPressed, this, &MWindow::PathEntered);
  connect(view_, &BrowserView::DownloadPressed, this,
          [this] { MessageReceived(Message("DWLD"_what)); });
  connect(view_, &BrowserView::UploadPressed, this,
          [this] { MessageReceived(Message("UPLD"_what)); });
  connect(listing, &DirListView::Invoked, this, [this] { MessageReceived(Message("SNGL"_what)); });
  connect(listing, &DirListView::Chosen, this, &MWindow::RunCommand);
  connect(listing, &DirListView::SelectionChanged, this, &MWindow::MenusBeginning);
  connect(listing, &DirListView::EnabledChanged, this, &MWindow::ListingEnabled);
  connect(listing, &DirListView::DragBegins, transfers_, &BrowserTransfers::DragRows);
  connect(&view_->Transfer(), &TransferView::Settled, this, &MWindow::TransferSettled);
  connect(session_.get(), &BrowserSession::ReadyChanged, this, &MWindow::MenusBeginning);
  connect(qApp, &QApplication::focusChanged, this, [this, listing](QWidget*, QWidget* now) {
    if (now != &view_->Path() && now != listing) return;
    lastFocus_ = now;
    MenusBeginning();
  });
}

void MWindow::MakeMenus() {
  menuBar()->setObjectName("MenuBar");
  commands_ = new BrowserCommands(
      *menuBar(), [this](const BrowserCommand& command) { RunCommand(command); },
      [this](QMenu& menu, int fixed) { AddWindowItems(menu, fixed, app_.BrowserWindows(), this); });
  commands_->setParent(this);
  connect(commands_, &BrowserCommands::MenusBeginning, this, &MWindow::MenusBeginning);
  MenusBeginning();
}

void MWindow::RunCommand(const BrowserCommand& command) {
  switch (command.target) {
    case BrowserCommand::Target::Window: MessageReceived(Message(command.code)); break;
    case BrowserCommand::Target::Connection: session_->ChangeDirectory(command.where); break;
    case BrowserCommand::Target::Program: app_.PostMessage(Message(command.code)); break;
  }
}

void MWindow::MenusBeginning() {
  if (commands_ == nullptr) return;
  const DirListView& listing = view_->Listing();
  const int row = listing.FirstSelected();
  const bool ready = session_->IsReady() && listing.IsEnabled();
  commands_->Update({.ready = ready,
                     .selected = row < 0 ? 0 : listing.Rows().At(row).Type(),
                     .pathUsed = lastFocus_ == &view_->Path(),
                     .anyUsed = !lastFocus_.isNull()});
  view_->SetUsable(ready, listing.IsEnabled());
}

void MWindow::ListingEnabled(bool enabled) {
  commands_->SetCommandsEnabled(enabled);
  MenusBeginning();
}

DirListView& MWindow::Listing() {
  return view_->Listing();
}

bool MWindow::IsTransferring() const {
  return view_->Transfer().Running();
}

QString MWindow::WouldEnd() const {
  const QString host = ToText(session_->To().host);
  if (IsTransferring()) return tr("A transfer runs on the connection to %1.").arg(host);
  if (session_->IsDeleting()) return tr("Entries on %1 are still being deleted.").arg(host);
  return {};
}

void MWindow::Disconnect() {
  view_->Transfer().LetGo();
  session_->End();
}

void MWindow::CloseNow() {
  mayClose_ = true;
  close();
}

// The frame is kept at once: a window that is opened in place of this one stands there.
void MWindow::closeEvent(QCloseEvent* event) {
  if (const QString running = WouldEnd(); !mayClose_ && !running.isEmpty()) {
    event->ignore();
    return alerts_->AskToClose(running);
  }
  closed_ = true;
  Frames::Keep(kConnectionFrame, *this);
  hide();
  Disconnect();
  event->accept();
}

void MWindow::MessageReceived(const Message& message) {
  switch (message.what) {
    case "PCHN"_what: ChangeDirectory(); break;
    case "NWST"_what: AddShortcut(); break;
    case "DELE"_what: entries_->Delete(); break;
    case "MKDR"_what: entries_->ShowNewDir(); break;
    case "RNFW"_what: entries_->ShowRename(); break;
    case "VWFL"_what: entries_->ViewFile(); break;
    case "VWDR"_what: session_->Send(Message("VWDR"_what)); break;
    case "SNGL"_what: OpenSelected(); break;
    case "DWLD"_what: DownloadRequested(message); break;
    case "UPLD"_what: transfers_->ChooseUploads(); break;
    case "COPY"_what: CopySelected(); break;
    case "SALL"_what: SelectEverything(); break;
    case "ADDI"_what: FinishedUpload(message); break;
    case "FERR"_what: alerts_->FatalError(message); break;
    case "GERR"_what: alerts_->Warned(message); break;
    case "LOST"_what: alerts_->Lost(message); break;
    case "TMOT"_what: CloseNow(); break;
    case "SHLG"_what: log_->BringForward(); break;
    case "SHWD"_what: BringForward(this); break;
    case "_QRQ"_what: close(); break;
    default: break;
  }
}

void MWindow::Warn(const QString& text, const QString& title) {
  alerts_->Warn(text, title);
}

void MWindow::ShowStatus(const Text& text) {
  view_->ShowStatus(ShownInLine(text));
}

void MWindow::AppendLog(std::string_view text) {
  log_->Append(text);
}

void MWindow::ShowPath(std::string_view path) {
  view_->ShowPath(ToText(path));
}

void MWindow::GetRidofListing() {
  view_->ClearListing();
}

void MWindow::AddRows(std::vector<MWListItem> items) {
  view_->Listing().Rows().Append(std::move(items));
}

void MWindow::ListingEnded(std::size_t count) {
  view_->ShowCount(count);
  view_->Listing().SortByName();
}

void MWindow::RemoveRow(const std::string& name, const std::string& directory) {
  if (directory == session_->CurrentDirectory()) view_->RemoveRow(name);
}

void MWindow::RenameRow(const std::string& from, const std::string& to,
                        const std::string& directory) {
  if (directory == session_->CurrentDirectory()) view_->RenameRow(from, to);
}

void MWindow::ChangeValues(const std::string& name, std::int64_t size) {
  view_->ChangeValues(name, size);
}

void MWindow::OpenViewer(const std::shared_ptr<ViewerLink>& link, const Text& title) {
  auto* viewer = new MViewFile(this, Shown(title), link);
  Frames::PutBelow(*viewer, *this);
  viewer->show();
}

void MWindow::ChangeDirectory() {
  if (view_->Path().hasFocus() && !view_->Path().text().isEmpty()) return PathEntered();
  const DirListView& listing = view_->Listing();
  const int row = listing.FirstSelected();
  if (row >= 0 && listing.Rows().At(row).Type() == kDirectory) {
    session_->ChangeDirectory(listing.Rows().At(row).Name());
  }
}

void MWindow::PathEntered() {
  QLineEdit& path = view_->Path();
  if (path.text().isEmpty()) return;
  path.setModified(false);
  ShowStatus(Text("Changing Dir.."));
  session_->ChangeDirectory(EditedBytes(path.text(), session_->CurrentDirectory()));
}

void MWindow::AddShortcut() {
  Shortcut shortcut{.label = session_->To().host, .site = session_->To()};
  shortcut.site.path = session_->Place();
  app_.ShowEditor(shortcut, *this);
}

void MWindow::OpenSelected() {
  const DirListView& listing = view_->Listing();
  const int row = listing.FirstSelected();
  if (row < 0) return;
  const MWListItem& item = listing.Rows().At(row);
  switch (item.Type()) {
    case kDirectory: session_->ChangeDirectory(item.Name()); break;
    case kFile: MessageReceived(Message("DWLD"_what)); break;
    case kLink: session_->FollowLink(item.Name()); break;
    default: break;
  }
}

void MWindow::CopySelected() {
  if (lastFocus_ == &view_->Path()) return view_->Path().copy();
  DirListView& listing = view_->Listing();
  Url url{.host = session_->To().host, .port = session_->To().port};
  QString text;
  for (const int row : listing.SelectedRows()) {
    url.path = PathBelow(session_->CurrentDirectory(), listing.Rows().At(row).Name());
    text += QString::fromStdString(url.Written()) + '\n';
  }
  if (text.isEmpty()) return;
  QApplication::clipboard()->setText(text);
  listing.clearSelection();
}

void MWindow::SelectEverything() {
  if (lastFocus_ == &view_->Path()) {
    view_->Path().selectAll();
  } else {
    view_->Listing().selectAll();
  }
}

// The connection names a row; the user chooses some. What it names may come late, so that what is
// selected meanwhile stays.
void MWindow::DownloadRequested(const Message& message) {
  if (const auto name = message.FindString("FileName"); name.has_value()) {
    transfers_->Download(transfers_->Named(*name));
  } else if (view_->Listing().FirstSelected() > 0) {
    transfers_->Download(transfers_->Selected());
  }
}

void MWindow::FinishedUpload(const Message& message) {
  const std::string name = message.FindString("FileName").value_or("");
  const std::string path = message.FindString("Path").value_or("");
  const bool isFile = !message.FindString("Type").value_or("").starts_with('d');
  const std::string& shown = session_->CurrentDirectory();
  if (name.empty() || WithoutTrailingSlash(path) != WithoutTrailingSlash(shown)) return;
  view_->ShowUploaded(name, isFile, message.FindInt64("fSize").value_or(0));
}

void MWindow::TransferSettled(const TransferNews& news) {
  view_->Listing().EnableAll();
  if (!news.failure.isEmpty()) session_->Log(news.failure.toStdString() + "\n");
}

bool MWindow::Takes(const QDropEvent& drop) const {
  const QMimeData& offer = *drop.mimeData();
  return view_->Listing().IsEnabled() && session_->IsReady() && drop.source() == nullptr &&
         !offer.hasFormat(DragData::kRows) && offer.hasUrls() &&
         drop.possibleActions().testFlag(Qt::CopyAction);
}

// Copying, whatever the source would like: after a move it would delete its files.
void MWindow::dragEnterEvent(QDragEnterEvent* event) {
  event->setDropAction(Takes(*event) ? Qt::CopyAction : Qt::IgnoreAction);
  event->setAccepted(event->dropAction() == Qt::CopyAction);
}

void MWindow::dragMoveEvent(QDragMoveEvent* event) {
  event->setDropAction(Takes(*event) ? Qt::CopyAction : Qt::IgnoreAction);
  event->setAccepted(event->dropAction() == Qt::CopyAction);
}

void MWindow::dropEvent(QDropEvent* event) {
  event->ignore();
  if (!Takes(*event)) return;
  const LocalDrop drop = LocalDrop::Read(event->mimeData()->data("text/uri-list").toStdString());
  if (!drop.paths.empty()) {
    event->setDropAction(Qt::CopyAction);
    event->accept();
    transfers_->Upload(drop.paths);
  }
  if (const QString complaint = drop.Complaint(); !complaint.isEmpty()) Warn(complaint);
}

// The path field would take files as text.
bool MWindow::eventFilter(QObject* object, QEvent* event) {
  if (event->type() != QEvent::DragEnter) return QMainWindow::eventFilter(object, event);
  auto* enter = static_cast<QDragEnterEvent*>(event);
  if (!enter->mimeData()->hasUrls()) return false;
  enter->ignore();
  return true;
}

}  // namespace corvane
