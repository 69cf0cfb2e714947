// What a browser window asks of its connection beyond changing the directory: deleting, renaming,
// making directories, viewing, and connecting again.

#include <utility>

#include "app/browser/DirListView.h"
#include "app/browser/MWindow.h"
#include "app/browser/NewDir.h"
#include "app/browser/RenameWin.h"
#include "app/browser/WindowLog.h"
#include "app/program/TambleApp.h"
#include "app/shared/Alerts.h"
#include "app/shared/EngineTexts.h"
#include "app/shared/Frames.h"
#include "app/shared/OpenMessage.h"
#include "app/shared/ScreenText.h"
#include "app/shared/SmallView.h"
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

}  // namespace

// "." and ".." are never deleted, however they came to be selected.
void MWindow::DeleteRequested() {
  Message entries("DELE"_what);
  entries.AddString("path", currentDirectory_);
  int directories = 0;
  QString name;
  for (const int row : listing_->SelectedRows()) {
    const MWListItem& item = listing_->Rows().At(row);
    if (item.IsDots()) continue;
    entries.AddString("name", item.Name());
    entries.AddInt32("type", item.Type());
    name = ToText(item.Name());
    if (item.Type() == kDirectory) ++directories;
  }
  const auto count = static_cast<int>(entries.CountValues("name"));
  if (count == 0) return;
  QString text;
  if (count > 1) {
    text = tr("Delete these %n entries from the server?", "", count);
    if (directories > 0) text += "\n\n" + tr("Directories go with everything in them.");
  } else if (directories > 0) {
    text = tr("Delete the directory \"%1\" and everything in it from the server?").arg(name);
  } else {
    text = tr("Delete \"%1\" from the server?").arg(name);
  }
  Alerts::Show(
      this,
      {.title = tr("Alert!"), .text = text, .buttons = {tr("&Delete"), tr("Cancel")}, .preset = 1},
      [this, entries](int button) {
        if (button == 0) DeleteEntries(entries);
      });
}

void MWindow::DeleteEntries(const Message& entries) {
  listing_->clearSelection();
  ShowStatus("Connected.");
  SendToLooper(entries);
}

void MWindow::ShowNewDir() {
  if (newDir_ == nullptr) {
    newDir_ = new NewDir(this);
    connect(newDir_, &NewDir::Entered, this, [this] { MessageReceived(Message("CRDR"_what)); });
  }
  ShowBeside(*this, newDir_);
}

// The listing is disabled until the server has answered, which 'ENBL' says.
void MWindow::CreateDirectory() {
  if (newDir_ == nullptr || newDir_->Name().isEmpty() || IsBusy()) return;
  Message message("MKDR"_what);
  message.AddString("path", currentDirectory_);
  message.AddString("name", ToBytes(newDir_->Name()));
  listing_->DisableAll();
  if (!SendToLooper(message)) listing_->EnableAll();
}

void MWindow::ShowRename() {
  const int row = listing_->FirstSelected();
  if (row < 0 || listing_->Rows().At(row).IsDots()) return;
  if (renameWin_ == nullptr) {
    renameWin_ = new RenameWin(this);
    connect(renameWin_, &RenameWin::Entered, this,
            [this] { MessageReceived(Message("RNFL"_what)); });
  }
  renaming_ = listing_->Rows().At(row).Name();
  renamingIn_ = currentDirectory_;
  renameWin_->Fill(ToText(renaming_));
  ShowBeside(*this, renameWin_);
}

// Most servers replace an entry of the new name without a word.
void MWindow::RenameRequested() {
  if (renameWin_ == nullptr || renameWin_->RenameTo().isEmpty() || IsBusy()) return;
  const std::string from = EditedBytes(renameWin_->Original(), renaming_);
  const std::string to = ToBytes(renameWin_->RenameTo());
  if (from == to) return;
  Message message("RNFL"_what);
  message.AddString("original", from);
  message.AddString("renameto", to);
  message.AddString("path", renamingIn_);
  const bool elsewhere = to.find('/') != std::string::npos;
  if (!elsewhere && listing_->Rows().Find(to) < 0) return void(SendToLooper(message));
  const QString text =
      elsewhere ? tr("This moves the entry to \"%1\"; the server may replace what is there.")
                : tr("\"%1\" exists already, and the server may replace it.");
  Alerts::Show(this,
               {.title = tr("Alert!"),
                .text = text.arg(ToText(to)),
                .buttons = {tr("&Rename"), tr("Cancel")},
                .preset = 1},
               [this, message](int button) {
                 if (button == 0) SendToLooper(message);
               });
}

void MWindow::ViewFile() {
  const int row = listing_->FirstSelected();
  if (row < 0 || listing_->Rows().At(row).Type() == kDirectory) return;
  Message message("VWFL"_what);
  message.AddString("path", currentDirectory_);
  message.AddString("file", listing_->Rows().At(row).Name());
  SendToLooper(message);
}

bool MWindow::IsBusy() {
  if (IsTransferring()) Warn(tr("This connection is busy with another transfer."));
  return IsTransferring();
}

void MWindow::OfferToConnect(const QString& text) {
  if (std::exchange(offering_, true)) return AppendLog(text.toStdString() + "\n");
  Alerts::Show(
      this, {.title = tr("Warning"), .text = text, .buttons = {tr("&Connect Again"), tr("Cancel")}},
      [this](int button) {
        offering_ = false;
        if (button != 0) return;
        Message message("RCNN"_what);
        message.AddString("path", currentDirectory_);
        SendToLooper(message);
      });
}

void MWindow::OfferOtherMode(const Message& warning, bool passive) {
  const QString text = Translated(ToLines(warning.FindString("warning").value_or("")));
  if (std::exchange(offering_, true)) return AppendLog(text.toStdString() + "\n");
  Alerts::Question question{.title = tr("Error"), .text = text};
  if (passive) {
    question.detail = tr("Some servers only work with active connections.");
    question.buttons = {tr("&Try Active Connections"), tr("Cancel")};
  } else {
    question.detail = tr("Behind a router or a firewall, passive connections mostly work.");
    question.buttons = {tr("&Try Passive Connections"), tr("Cancel")};
  }
  Alerts::Show(this, question, [this, passive](int button) {
    offering_ = false;
    if (button != 0) return;
    Site site = connection_;
    if (!currentDirectory_.empty()) site.path = currentDirectory_;
    site.passive = !passive;
    TambleApp& app = app_;
    close();  // the new window stands where this one stood
    app.PostMessage(OpenMessage(site));
  });
}

void MWindow::RemoveRow(const std::string& name) {
  const int row = listing_->Rows().Find(name);
  if (row < 0) return;
  listing_->Rows().Remove(row);
  count_->SetText(count_->Count() - 1);
}

// A row that had the new name is replaced, as its entry is.
void MWindow::RenameRow(const std::string& from, const std::string& to,
                        const std::string& directory) {
  if (directory != currentDirectory_ || from == to || listing_->Rows().Find(from) < 0) return;
  // A name with a way in it has moved the entry out of this directory.
  if (to.find('/') != std::string::npos) return RemoveRow(from);
  RemoveRow(to);
  listing_->Rows().Rename(listing_->Rows().Find(from), to);
}

void MWindow::ChangeValues(const std::string& name, std::int64_t size) {
  const int row = listing_->Rows().Find(name);
  if (row >= 0 && listing_->Rows().At(row).Type() == kLink) listing_->ChangeValues(row, size);
}

}  // namespace corvane
