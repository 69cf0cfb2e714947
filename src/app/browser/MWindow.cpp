#include "app/browser/MWindow.h"

#include <QApplication>
#include <QClipboard>
#include <QCloseEvent>
#include <QLabel>
#include <QLineEdit>
#include <ctime>
#include <utility>

#include "app/browser/BrowserLink.h"
#include "app/browser/DirListView.h"
#include "app/browser/MViewFile.h"
#include "app/browser/WindowLog.h"
#include "app/program/TambleApp.h"
#include "app/shared/Alerts.h"
#include "app/shared/EngineTexts.h"
#include "app/shared/Frames.h"
#include "app/shared/ScreenText.h"
#include "app/shared/SmallView.h"
#include "app/shared/Windows.h"
#include "app/transfers/TransferPane.h"
#include "ftp/MFtp.h"
#include "net/NLException.h"
#include "sites/Shortcut.h"
#include "util/Url.h"

namespace corvane {
namespace {

std::string WithoutTrailingSlash(std::string path) {
  if (path.ends_with('/')) path.pop_back();
  return path;
}

std::tm LocalTimeNow() {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  return local;
}

}  // namespace

MWindow::MWindow(TambleApp& app, const QRect& frame, Site connection)
    : app_(app), connection_(std::move(connection)), link_(std::make_shared<BrowserLink>(*this)) {
  setAttribute(Qt::WA_DeleteOnClose);
  setWindowTitle(tr("Connected To: %1").arg(ToText(connection_.host)));
  setMaximumSize(4000, 4000);
  setGeometry(frame);
  log_ = new WindowLog(this, tr("Log Window: %1").arg(ToText(connection_.host)));
  MakeViews();
  MakeMenus();
  SetLeastSize();
  app_.AddWindow(this);
  StartLooper();
}

MWindow::~MWindow() {
  // The base class still moves the focus and takes the views apart.
  qApp->disconnect(this);
  listing_->disconnect(this);
  Disconnect();
  Frames::Keep(kConnectionFrame, *this);
  app_.RemoveWindow(this);
}

void MWindow::StartLooper() {
  try {
    looper_ = app_.Workers().looper(connection_, link_);
  } catch (const NLException& error) {
    FailToStart(Translated(ToText(Reason(error))));
    return;
  }
  if (!looper_->Run() || !looper_->PostMessage(Message("CNNT"_what))) {
    FailToStart(tr("The system has no thread to give."));
  }
}

// The alert comes once the window stands.
void MWindow::FailToStart(const QString& why) {
  Message error("FERR"_what);
  error.AddString("error", tr("The connection could not be begun.").toStdString());
  error.AddString("detail", why.toStdString());
  link_->PostMessage(std::move(error));
}

void MWindow::Disconnect() {
  link_->Close();
  pane_->LetGo();
  if (looper_ != nullptr) looper_->Quit();
  looper_.reset();
}

void MWindow::closeEvent(QCloseEvent* event) {
  hide();
  Disconnect();
  event->accept();
}

bool MWindow::SendToLooper(const Message& message) {
  if (looper_ != nullptr && looper_->PostMessage(message)) return true;
  // A full queue means a hundred requests are waiting; one more would not be noticed.
  QApplication::beep();
  return false;
}

void MWindow::MessageReceived(const Message& message) {
  switch (message.what) {
    case "PCHN"_what:
      if (message.FindString("cwd").has_value()) {
        SendToLooper(message);
      } else {
        ChangeDirectory();
      }
      break;
    case "NWST"_what: AddShortcut(); break;
    case "DELE"_what: DeleteRequested(); break;
    case "MKDR"_what: ShowNewDir(); break;
    case "CRDR"_what: CreateDirectory(); break;
    case "RNFW"_what: ShowRename(); break;
    case "RNFL"_what: RenameRequested(); break;
    case "VWFL"_what: ViewFile(); break;
    case "VWDR"_what: SendToLooper(message); break;
    case "ENBL"_what:
      if (!IsTransferring()) listing_->EnableAll();
      break;
    case "SNGL"_what: OpenSelected(); break;
    case "DWLD"_what: DownloadRequested(message); break;
    case "UPLD"_what: ChooseUploads(); break;
    case "COPY"_what: CopySelected(); break;
    case "SALL"_what: SelectEverything(); break;
    case "ADDI"_what: FinishedUpload(message); break;
    case "FERR"_what: FatalError(message); break;
    case "GERR"_what:
      if (const auto passive = message.FindBool("passive")) {
        OfferOtherMode(message, *passive);
      } else {
        Warn(Translated(ToLines(message.FindString("warning").value_or(""))), tr("Warning"));
      }
      break;
    case "LOST"_what:
      OfferToConnect(Translated(ToLines(message.FindString("warning").value_or(""))));
      break;
    case "TMOT"_what:
      closingForError_ = true;
      close();
      break;
    case "SHLG"_what: log_->BringForward(); break;
    case "SHWD"_what: BringForward(this); break;
    default: break;
  }
}

void MWindow::FatalError(const Message& message) {
  const QString text = Translated(ToLines(message.FindString("error").value_or("")));
  const QString detail = Translated(ToLines(message.FindString("detail").value_or("")));
  if (connectedOnce_) {
    return OfferToConnect(detail.isEmpty() ? text : text + '\n' + detail);
  }
  if (std::exchange(closingForError_, true)) return;
  Alerts::Show(
      this, {.icon = QMessageBox::Critical, .title = tr("Error"), .text = text, .detail = detail},
      [this](int) { close(); });
}

// A server that is refused much is not to fill the screen: what comes while some alerts wait for an
// answer is in the log.
void MWindow::Warn(const QString& text, const QString& title) {
  constexpr int kMostAlerts = 3;
  if (openWarnings_ == kMostAlerts) {
    log_->Append(text.toStdString() + "\n");
    return;
  }
  ++openWarnings_;
  Alerts::Show(this, {.title = title, .text = text}, [this](int) { --openWarnings_; });
}

void MWindow::ShowStatus(std::string_view text) {
  status_->setText(Translated(ToText(text)));
  status_->setToolTip(Harmless(status_->text()));
  // A label's accessible name stands in for its text, so it holds the text too.
  status_->setAccessibleName(tr("Status: %1").arg(status_->text()));
}

void MWindow::AppendLog(std::string_view text) {
  log_->Append(text);
}

void MWindow::LogLater(std::string_view text) {
  link_->AppendLog(text);
}

bool MWindow::IsTransferring() const {
  return pane_->Running();
}

void MWindow::ShowPath(std::string_view path) {
  connectedOnce_ = true;
  currentDirectory_ = path;
  // What is being typed stays.
  if (!path_->hasFocus() || !path_->isModified()) path_->setText(ToText(path));
}

void MWindow::GetRidofListing() {
  listing_->clearSelection();
  listing_->Rows().Clear();
  count_->SetText(0);
}

void MWindow::AddRows(std::vector<MWListItem> items) {
  listing_->Rows().Append(std::move(items));
}

void MWindow::ListingEnded(std::size_t count) {
  count_->SetText(static_cast<int>(count));
  listing_->SortByName();
}

void MWindow::OpenViewer(const std::shared_ptr<ViewerLink>& link, std::string_view title) {
  auto* viewer = new MViewFile(this, Translated(ToText(title)), link);
  viewer->move(frameGeometry().topLeft() + QPoint(-20, 40));
  viewer->show();
}

void MWindow::ChangeDirectoryTo(const std::string& name) {
  Message message("PCHN"_what);
  message.AddString("cwd", name);
  SendToLooper(message);
}

void MWindow::ChangeDirectory() {
  if (path_->hasFocus() && !path_->text().isEmpty()) {
    PathEntered();
    return;
  }
  const int row = listing_->FirstSelected();
  if (row >= 0 && listing_->Rows().At(row).Type() == kDirectory) {
    ChangeDirectoryTo(listing_->Rows().At(row).Name());
  }
}

void MWindow::PathEntered() {
  if (path_->text().isEmpty()) return;
  path_->setModified(false);
  ShowStatus("Changing Dir..");
  ChangeDirectoryTo(EditedBytes(path_->text(), currentDirectory_));
}

void MWindow::AddShortcut() {
  Shortcut shortcut{.label = connection_.host, .site = connection_};
  shortcut.site.path = currentDirectory_;
  app_.ShowEditor(shortcut, *this);
}

void MWindow::OpenSelected() {
  const int row = listing_->FirstSelected();
  if (row < 0) return;
  const MWListItem& item = listing_->Rows().At(row);
  switch (item.Type()) {
    case kDirectory: ChangeDirectoryTo(item.Name()); break;
    case kFile: MessageReceived(Message("DWLD"_what)); break;
    case kLink: {
      Message message("HSYM"_what);
      message.AddString("sym", item.Name());
      SendToLooper(message);
      break;
    }
    default: break;
  }
}

void MWindow::CopySelected() {
  if (lastFocus_ == path_) {
    path_->copy();
    return;
  }
  QString text;
  for (const int row : listing_->SelectedRows()) {
    const Url url{
        .host = connection_.host,
        .port = connection_.port,
        .path = WithoutTrailingSlash(currentDirectory_) + "/" + listing_->Rows().At(row).Name()};
    text += QString::fromStdString(url.Written()) + '\n';
  }
  if (text.isEmpty()) return;
  QApplication::clipboard()->setText(text);
  listing_->clearSelection();
}

void MWindow::SelectEverything() {
  if (lastFocus_ == path_) {
    path_->selectAll();
  } else {
    listing_->selectAll();
  }
}

void MWindow::FinishedUpload(const Message& message) {
  const std::string name = message.FindString("FileName").value_or("");
  const std::string path = message.FindString("Path").value_or("");
  const bool isFile = !message.FindString("Type").value_or("").starts_with('d');
  if (name.empty() || WithoutTrailingSlash(path) != WithoutTrailingSlash(currentDirectory_)) return;
  const std::int64_t size = isFile ? message.FindInt64("fSize").value_or(0) : kDirectorySize;
  const int row = listing_->Rows().Find(name);
  if (row < 0) {
    fileStruct entry;
    entry.name = name;
    entry.type = isFile ? kFile : kDirectory;
    entry.permissions = isFile ? "-r--r--r--" : "dr-xr--r--";
    entry.size = size;
    entry.time = LocalTimeNow();
    listing_->InsertItem(entry, name);
    count_->SetText(count_->Count() + 1);
  } else if (row > 1 && isFile) {
    listing_->Rows().SetSizeAndTime(row, size, LocalTimeNow());
  }
}

}  // namespace corvane
