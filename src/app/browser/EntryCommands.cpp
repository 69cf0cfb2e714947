#include "app/browser/EntryCommands.h"

#include <utility>

#include "app/browser/BrowserSession.h"
#include "app/browser/DirListView.h"
#include "app/browser/MWindow.h"
#include "app/browser/NewDir.h"
#include "app/browser/RenameWin.h"
#include "app/shared/Alerts.h"
#include "app/shared/Frames.h"
#include "app/shared/ScreenText.h"
#include "app/shared/Windows.h"

namespace corvane {
namespace {

void ShowBeside(const QWidget& browser, QWidget* window) {
  if (!window->isVisible()) {
    const QRect frame = browser.frameGeometry();
    window->move(
        Frames::OnScreen(QRect({frame.right() + 10, frame.bottom() / 2}, window->sizeHint()))
            .topLeft());
  }
  BringForward(window);
}

QString DeleteQuestion(int count, int directories, const QString& name) {
  if (count == 1) {
    return directories > 0
               ? MWindow::tr("Delete the directory \"%1\" and everything in it from the server?")
                     .arg(name)
               : MWindow::tr("Delete \"%1\" from the server?").arg(name);
  }
  QString text = MWindow::tr("Delete these %n entries from the server?", "", count);
  if (directories == 0) return text;
  return text + "\n\n" + MWindow::tr("Directories go with everything in them.");
}

}  // namespace

EntryCommands::EntryCommands(MWindow& window) : QObject(&window), window_(window) {}

void EntryCommands::Delete() {
  DirListView& listing = window_.Listing();
  Message entries("DELE"_what);
  entries.AddString("path", window_.Session().CurrentDirectory());
  int directories = 0;
  QString name;
  for (const int row : listing.SelectedRows()) {
    const MWListItem& item = listing.Rows().At(row);
    if (item.IsDots()) continue;
    entries.AddString("name", item.Name());
    entries.AddInt32("type", item.Type());
    name = ToText(item.Name());
    if (item.Type() == kDirectory) ++directories;
  }
  const auto count = static_cast<int>(entries.CountValues("name"));
  if (count == 0) return;
  Alerts::Show(&window_,
               {.title = MWindow::tr("Alert!"),
                .text = DeleteQuestion(count, directories, name),
                .buttons = {MWindow::tr("&Delete"), MWindow::tr("Cancel")},
                .preset = 1},
               [this, entries](int button) {
                 if (button != 0) return;
                 window_.Listing().clearSelection();
                 window_.ShowStatus(Text("Connected."));
                 window_.Session().Send(entries);
               });
}

void EntryCommands::ShowNewDir() {
  if (newDir_ == nullptr) {
    newDir_ = new NewDir(&window_);
    connect(newDir_, &NewDir::Entered, this, &EntryCommands::CreateDirectory);
  }
  ShowBeside(window_, newDir_);
}

void EntryCommands::CreateDirectory() {
  if (newDir_->Name().isEmpty() || IsBusy()) return;
  Message message("MKDR"_what);
  message.AddString("name", ToBytes(newDir_->Name()));
  window_.Session().Send(std::move(message));
}

void EntryCommands::ShowRename() {
  DirListView& listing = window_.Listing();
  const int row = listing.FirstSelected();
  if (row < 0 || listing.Rows().At(row).IsDots()) return;
  if (renameWin_ == nullptr) {
    renameWin_ = new RenameWin(&window_);
    connect(renameWin_, &RenameWin::Entered, this, &EntryCommands::Rename);
  }
  renaming_ = listing.Rows().At(row).Name();
  renamingIn_ = window_.Session().CurrentDirectory();
  renameWin_->Fill(ToText(renaming_));
  ShowBeside(window_, renameWin_);
}

// Most servers replace an entry of the new name without a word.
void EntryCommands::Rename() {
  if (renameWin_->RenameTo().isEmpty() || IsBusy()) return;
  const std::string from = EditedBytes(renameWin_->Original(), renaming_);
  const std::string to = ToBytes(renameWin_->RenameTo());
  if (from == to) return;
  Message message("RNFL"_what);
  message.AddString("original", from);
  message.AddString("renameto", to);
  message.AddString("path", renamingIn_);
  const bool elsewhere = to.find('/') != std::string::npos;
  if (!elsewhere && window_.Listing().Rows().Find(to) < 0) {
    window_.Session().Send(std::move(message));
    return;
  }
  const QString text =
      elsewhere
          ? MWindow::tr("This moves the entry to \"%1\"; the server may replace what is there.")
          : MWindow::tr("\"%1\" exists already, and the server may replace it.");
  Alerts::Show(&window_,
               {.title = MWindow::tr("Alert!"),
                .text = text.arg(ToText(to)),
                .buttons = {MWindow::tr("&Rename"), MWindow::tr("Cancel")},
                .preset = 1},
               [this, message](int button) {
                 if (button == 0) window_.Session().Send(message);
               });
}

void EntryCommands::ViewFile() {
  DirListView& listing = window_.Listing();
  const int row = listing.FirstSelected();
  if (row < 0 || listing.Rows().At(row).Type() == kDirectory) return;
  Message message("VWFL"_what);
  message.AddString("file", listing.Rows().At(row).Name());
  window_.Session().Send(std::move(message));
}

bool EntryCommands::IsBusy() {
  const bool busy = window_.IsTransferring();
  if (busy) window_.Warn(MWindow::tr("This connection is busy with another transfer."));
  return busy;
}

}  // namespace corvane
