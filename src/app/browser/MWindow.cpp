#include "app/browser/MWindow.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QMenuBar>
#include <QMimeData>
#include <QMouseEvent>
#include <utility>

#include "app/browser/BrowserAlerts.h"
#include "app/browser/BrowserCommands.h"
#include "app/browser/BrowserHost.h"
#include "app/browser/BrowserPane.h"
#include "app/browser/BrowserSession.h"
#include "app/browser/BrowserToolBar.h"
#include "app/browser/BrowserTransfers.h"
#include "app/browser/BrowserView.h"
#include "app/browser/ConnectionProgress.h"
#include "app/browser/CutRows.h"
#include "app/browser/DirListView.h"
#include "app/browser/EntryCommands.h"
#include "app/browser/EntryWindows.h"
#include "app/browser/MViewFile.h"
#include "app/browser/Navigation.h"
#include "app/browser/Padlock.h"
#include "app/browser/PathField.h"
#include "app/browser/SiteNames.h"
#include "app/browser/WindowLog.h"
#include "app/shared/Frames.h"
#include "app/shared/OpenMessage.h"
#include "app/shared/ScreenText.h"
#include "app/shared/Shown.h"
#include "app/shared/StatusLine.h"
#include "app/shared/Style.h"
#include "app/shared/TransferView.h"
#include "app/shared/UserQuestions.h"
#include "app/shared/Windows.h"
#include "remote/RemotePath.h"
#include "settings/ProcessSettings.h"
#include "sites/Shortcut.h"
#include "sites/SiteOf.h"
#include "util/Url.h"

namespace corvane {

MWindow::MWindow(BrowserHost& app, const QRect& frame, Site site)
    : app_(app), session_(std::make_unique<BrowserSession>(*this, std::move(site))) {
  setAttribute(Qt::WA_DeleteOnClose);
  setMaximumSize(4000, 4000);
  setGeometry(frame);
  log_ = new WindowLog(this, LogTitle(session_->To()));
  alerts_ = new BrowserAlerts(*this);
  transfers_ = new BrowserTransfers(app_, *this);
  navigation_ = new Navigation(*this);
  progress_ = new ConnectionProgress(app_, *this);
  MakeView();
  entries_ = new EntryCommands(*this);
  entryWindows_ = new EntryWindows(app_, *this);
  padlock_ = new Padlock(*this);
  MakeMenus();
  connect(progress_, &ConnectionProgress::Changed, this, &MWindow::ConnectionChanged);
  view_->Listing().Remember(SiteKey(session_->To()));
  progress_->Begin(session_->To());
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
  PathField& path = view_->Path();
  path.SetEncoding(session_->To().encoding);
  path.ShowPath(session_->To().path);
  path.OfferPaths([this] { return navigation_->Recent(); },
                  [this] { return navigation_->Below(); });
  setAcceptDrops(true);
  DirListView* listing = &view_->Listing();
  const auto on = [this](std::uint32_t code) {
    return [this, code] { MessageReceived(Message(code)); };
  };
  connect(&path, &PathField::Entered, navigation_, &Navigation::PathEntered);
  connect(&path, &PathField::Left, listing, qOverload<>(&QWidget::setFocus));
  connect(&view_->Pane(), &BrowserPane::DownloadPressed, this, on("DWLD"_what));
  connect(&view_->Pane(), &BrowserPane::UploadPressed, this, on("UPLD"_what));
  connect(view_, &BrowserView::ConnectAgainPressed, progress_, &ConnectionProgress::ConnectAgain);
  connect(view_, &BrowserView::CancelPressed, this, &MWindow::CloseNow);
  connect(view_, &BrowserView::ClosePressed, this, &MWindow::CloseNow);
  connect(view_, &BrowserView::DiagnosePressed, this, &MWindow::Diagnose);
  connect(view_, &BrowserView::TryAgainPressed, this, &MWindow::TryAgain);
  connect(listing, &DirListView::Invoked, this, on("SNGL"_what));
  connect(listing, &DirListView::Chosen, this, &MWindow::RunCommand);
  connect(listing, &DirListView::SelectionChanged, this, &MWindow::MenusBeginning);
  connect(listing, &DirListView::EnabledChanged, this, &MWindow::ListingEnabled);
  connect(listing, &DirListView::BackWanted, this,
          [this] { commands_->Action("BACK"_what)->trigger(); });
  connect(listing, &DirListView::ForwardWanted, this,
          [this] { commands_->Action("FRWD"_what)->trigger(); });
  connect(listing, &DirListView::MoveWanted, this,
          [this](const std::vector<std::string>& names, const std::string& directory) {
            entries_->Move(names, PathBelow(session_->CurrentDirectory(), directory));
          });
  connect(listing, &DirListView::FilesDropped, this, &MWindow::FilesDropped);
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
  view_->Bar().Follow(*commands_);
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
  const bool connected = progress_->Now() == ConnectionProgress::State::Connected;
  const bool ready = connected && session_->IsReady() && listing.IsEnabled();
  const History& shown = navigation_->Shown();
  commands_->Update(
      {.ready = ready,
       .selected = row < 0 ? 0 : listing.Rows().At(row).Type(),
       .anyFile = listing.HasFiles(),
       .count = row < 0 ? 0 : listing.SelectedCount(),
       .pathUsed = lastFocus_ == &view_->Path(),
       .anyUsed = !lastFocus_.isNull(),
       .busy = session_->IsBusy(),
       .canCopy = canCopy_,
       .canPaste = CutRows::Current().CanMoveTo(session_->To(), session_->CurrentDirectory()),
       .canGoBack = !shown.Back().empty(),
       .canGoForward = !shown.Forward().empty(),
       .isShown = padlock_->IsShown()});
  view_->SetUsable(ready, listing.IsEnabled());
  view_->SetBusy(session_->IsBusy());
}

void MWindow::ConnectionChanged() {
  padlock_->SetConnected(progress_->Now() == ConnectionProgress::State::Connected);
  MenusBeginning();
  ShowTitle();
}

void MWindow::ShowTitle() {
  const bool connected = progress_->Now() == ConnectionProgress::State::Connected;
  const bool connecting = progress_->Now() == ConnectionProgress::State::Connecting;
  const QString place = connected ? LastName(session_->CurrentDirectory(), session_->To().encoding)
                        : connecting ? tr("Connecting")
                                     : tr("Not connected");
  setWindowTitle(Style::InForce().TitleOf(TitleFor(session_->To(), place)));
}

void MWindow::ListingEnabled(bool enabled) {
  commands_->SetCommandsEnabled(enabled);
  MenusBeginning();
}

DirListView& MWindow::Listing() {
  return view_->Listing();
}

void MWindow::MessageReceived(const Message& message) {
  switch (message.what) {
    case "PCHN"_what: navigation_->ChangeDirectory(); break;
    case "BACK"_what: navigation_->Back(); break;
    case "FRWD"_what: navigation_->Forward(); break;
    case "HOME"_what: navigation_->Home(); break;
    case "STOP"_what: session_->Stop(); break;
    case "FLTR"_what: view_->ToggleFilter(); break;
    case "OPNW"_what: OpenInNewWindow(); break;
    case "CUTT"_what: entries_->Cut(); break;
    case "PSTE"_what: entries_->Paste(); break;
    case "DUPL"_what: entries_->Duplicate(); break;
    case "NWST"_what: AddShortcut(); break;
    case "DELE"_what: entries_->Delete(); break;
    case "MKDR"_what: entries_->ShowNewDir(); break;
    case "RNFW"_what: entries_->ShowRename(); break;
    case "OPEN"_what: transfers_->OpenSelected(false); break;
    case "EDIT"_what: transfers_->OpenSelected(true); break;
    case "VWFL"_what: entries_->ViewFile(); break;
    case "VWDR"_what: session_->Send(Message("VWDR"_what)); break;
    case "SNGL"_what: OpenSelected(); break;
    case "PROP"_what: entryWindows_->ShowProperties(); break;
    case "FIND"_what: entryWindows_->ShowFind(); break;
    case "DWLD"_what: DownloadRequested(message); break;
    case "UPLD"_what: transfers_->ChooseUploads(); break;
    case "COPY"_what: CopySelected(); break;
    case "SALL"_what: SelectEverything(); break;
    case "ADDI"_what: FinishedUpload(message); break;
    case "CAPS"_what:
      canCopy_ = message.FindInt32("copy").value_or(0) != 0;
      entryWindows_->SetSetsTimes(message.FindInt32("times").value_or(0) != 0);
      break;
    case "FREE"_what: view_->ShowFree(message.FindInt64("bytes").value_or(-1)); break;
    case "FERR"_what: progress_->Failed(message); break;
    case "GERR"_what: alerts_->Warned(message); break;
    case "LOST"_what: progress_->Lost(message); break;
    case "DONE"_what: progress_->Ended(message); break;
    case "TMOT"_what: CloseNow(); break;
    case "SHLG"_what: log_->BringForward(); break;
    case "DIAG"_what: Diagnose(); break;
    case "SECU"_what: padlock_->ShowDetails(); break;
    case "SHWD"_what: BringForward(this); break;
    case "_QRQ"_what: close(); break;
    default: break;
  }
}

void MWindow::Warn(const QString& text, const QString& title) {
  alerts_->Warn(text, title);
}

void MWindow::ShowStatus(const Text& text) {
  view_->Status().SetText(ShownInLine(text));
}

void MWindow::ShowStep(const ConnectStep& step) {
  progress_->Show(step);
}

void MWindow::ShowProtection(const Protection& protection) {
  padlock_->Set(protection);
  MenusBeginning();
}

void MWindow::Ask(const std::shared_ptr<UserQuestion>& question) {
  UserQuestions::Ask(this, question);
}

void MWindow::AppendLog(std::string_view text) {
  log_->Append(text);
}

void MWindow::ShowPath(std::string_view path) {
  navigation_->Visit(std::string(path));
  progress_->Stands();
  ShowTitle();
}

void MWindow::OpenViewer(const std::shared_ptr<ViewerLink>& link, const Text& title) {
  auto* viewer = new MViewFile(this, Shown(title), link);
  Frames::PutBelow(*viewer, *this);
  viewer->show();
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

// On a connection of its own.
void MWindow::OpenInNewWindow() {
  const DirListView& listing = view_->Listing();
  const int row = listing.FirstSelected();
  if (row < 0) return;
  Site site = session_->To();
  site.path = PathBelow(session_->CurrentDirectory(), listing.Rows().At(row).Name());
  app_.PostMessage(OpenMessage(site));
}

void MWindow::CopySelected() {
  if (lastFocus_ == &view_->Path()) return view_->Path().copy();
  DirListView& listing = view_->Listing();
  Url url = UrlOf(session_->To(), {});
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
  } else if (const int row = view_->Listing().FirstSelected();
             row >= 0 && view_->Listing().Rows().At(row).Name() != ".") {
    transfers_->Download(transfers_->Selected());
  }
}

// What the entry is now, the server knows.
void MWindow::FinishedUpload(const Message& message) {
  const std::string name = message.FindString("FileName").value_or("");
  const std::string path = message.FindString("Path").value_or("");
  const std::string& shown = session_->CurrentDirectory();
  if (name.empty() || WithoutTrailingSlash(path) != WithoutTrailingSlash(shown)) return;
  const bool isFile = !message.FindString("Type").value_or("").starts_with('d');
  session_->LookAt(name, isFile ? kFile : kDirectory, message.FindInt64("fSize").value_or(0));
}

void MWindow::TryAgain(const Site& changed) {
  Site site = changed;
  site.warnsOfPlain = WarnsOfPlain(site, ProcessSettings::Get());
  progress_->Begin(site);
  log_->setWindowTitle(LogTitle(site));
  view_->Path().SetEncoding(site.encoding);
  view_->Listing().Remember(SiteKey(site));
}

void MWindow::Diagnose() {
  app_.Diagnose(this, session_->To(), [self = QPointer(this)](const Site& site) {
    if (!self.isNull()) self->ConnectTo(site);
  });
}

// A window that has shown a listing keeps it: only what is the same connection goes on there.
void MWindow::ConnectTo(const Site& site) {
  if (!session_->WasConnected()) return TryAgain(site);
  const bool lost = progress_->Now() == ConnectionProgress::State::NotConnected;
  if (lost && site == session_->To()) return progress_->ConnectAgain();
  app_.PostMessage(OpenMessage(site));
}

void MWindow::TransferSettled(const TransferNews& news) {
  view_->Listing().EnableAll();
  if (!news.failure.isEmpty()) session_->Log(news.failure.toStdString() + "\n");
}

void MWindow::mousePressEvent(QMouseEvent* event) {
  switch (event->button()) {
    case Qt::BackButton: commands_->Action("BACK"_what)->trigger(); break;
    case Qt::ForwardButton: commands_->Action("FRWD"_what)->trigger(); break;
    default: QMainWindow::mousePressEvent(event); break;
  }
}

}  // namespace corvane
