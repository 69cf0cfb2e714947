#include "app/browser/EntryCommands.h"

#include <map>
#include <utility>

#include "app/browser/BrowserSession.h"
#include "app/browser/BrowserView.h"
#include "app/browser/CutRows.h"
#include "app/browser/DirListView.h"
#include "app/browser/MWindow.h"
#include "app/browser/Navigation.h"
#include "app/browser/NewDir.h"
#include "app/browser/RenameWin.h"
#include "app/browser/SiteNames.h"
#include "app/shared/Alerts.h"
#include "app/shared/Frames.h"
#include "app/shared/ScreenText.h"
#include "app/shared/StatusLine.h"
#include "app/shared/Style.h"
#include "app/shared/Windows.h"
#include "remote/RemotePath.h"

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

/// What is to be deleted, as the question tells it.
struct Doomed {
  QStringList files;
  QStringList directories;

  [[nodiscard]] int Count() const { return static_cast<int>(files.size() + directories.size()); }
};

/// The first names of many.
QString Listed(const QStringList& names) {
  constexpr int kMost = 12;
  if (names.size() <= kMost) return names.join(", ");
  return names.first(kMost).join(", ") + ' ' +
         MWindow::tr("and %n more", "", static_cast<int>(names.size()) - kMost);
}

QString DeleteQuestion(const Doomed& doomed) {
  const bool directories = !doomed.directories.isEmpty();
  if (doomed.Count() == 1) {
    return directories
               ? MWindow::tr("Delete the directory \"%1\" and everything in it from the server?")
                     .arg(doomed.directories.first())
               : MWindow::tr("Delete \"%1\" from the server?").arg(doomed.files.first());
  }
  QString text = MWindow::tr("Delete these %n entries from the server?", "", doomed.Count());
  if (!directories) return text;
  return text + "\n\n" + MWindow::tr("Directories go with everything in them.");
}

Alerts::Question AboutDeleting(const Doomed& doomed, const QString& subject) {
  Alerts::Question question{.title = MWindow::tr("Alert!"),
                            .text = DeleteQuestion(doomed),
                            .buttons = {MWindow::tr("&Delete"), MWindow::tr("&Cancel")},
                            .preset = 1,
                            .subject = subject,
                            .advice = MWindow::tr("There is no way back.")};
  question.heading = question.text.section('\n', 0, 0);
  if (!doomed.directories.isEmpty() && doomed.Count() > 1) {
    question.advice =
        MWindow::tr("Directories go with everything in them.") + ' ' + question.advice;
  }
  if (doomed.Count() == 1) return question;
  for (const auto& [label, names] : {std::pair(MWindow::tr("Files"), doomed.files),
                                     std::pair(MWindow::tr("Directories"), doomed.directories)}) {
    if (!names.isEmpty()) question.facts.push_back({label, Listed(names)});
  }
  return question;
}

/// "table copy.csv", "table copy 2.csv": the first that is free.
std::string FreeName(const DirListModel& rows, const std::string& name) {
  const std::size_t dot = name.rfind('.');
  const std::size_t stem = dot == std::string::npos || dot == 0 ? name.size() : dot;
  for (int number = 1;; ++number) {
    QString mark = MWindow::tr("%1 copy");
    if (number > 1) mark = MWindow::tr("%1 copy %2").arg("%1", QString::number(number));
    std::string candidate = mark.toStdString();
    candidate.replace(candidate.find("%1"), 2, name.substr(0, stem));
    candidate += name.substr(stem);
    if (rows.Find(candidate) < 0) return candidate;
  }
}

}  // namespace

EntryCommands::EntryCommands(MWindow& window) : QObject(&window), window_(window) {
  DirListView& listing = window_.Listing();
  connect(&listing, &DirListView::NewDirectoryEntered, this, &EntryCommands::CreateDirectory);
  connect(&listing, &DirListView::NameEntered, this, &EntryCommands::RenameEntry);
}

QString EntryCommands::Subject(const QString& verb) const {
  return Style::InForce().TitleOf(TitleFor(window_.Session().To(), verb));
}

const std::string& EntryCommands::Encoding() const {
  return window_.Session().To().encoding;
}

void EntryCommands::Delete() {
  DirListView& listing = window_.Listing();
  Message entries("DELE"_what);
  entries.AddString("path", window_.Session().CurrentDirectory());
  Doomed doomed;
  for (const int row : listing.SelectedRows()) {
    const MWListItem& item = listing.Rows().At(row);
    if (item.IsDots()) continue;
    entries.AddString("name", item.Name());
    entries.AddInt32("type", item.Type());
    (item.Type() == kDirectory ? doomed.directories : doomed.files).append(item.NameText());
  }
  if (doomed.Count() == 0) return;
  Alerts::Show(&window_, AboutDeleting(doomed, Subject(MWindow::tr("Delete"))),
               [this, entries](int button) {
                 if (button != 0) return;
                 window_.Listing().clearSelection();
                 window_.Session().Send(entries);
               });
}

// They go in one request, by their paths below the root. What lies in a directory that goes too
// goes with it.
void EntryCommands::Delete(QWidget* over, const std::vector<FoundEntry>& entries) {
  std::map<std::string, const RemoteEntry*> paths;
  for (const FoundEntry& one : entries)
    paths.emplace(PathBelow(one.directory, one.entry.name), &one.entry);
  const auto goesWithAbove = [&](std::string path) {
    while (path.size() > 1) {
      path = SplitPath(path).first;
      const auto above = paths.find(path);
      if (above != paths.end() && above->second->kind == RemoteEntry::Kind::Directory) return true;
    }
    return false;
  };
  Message request("DELE"_what);
  request.AddString("path", "/");
  Doomed doomed;
  for (const auto& [path, entry] : paths) {
    if (!path.starts_with('/') || goesWithAbove(path)) continue;
    const bool directory = entry->kind == RemoteEntry::Kind::Directory;
    request.AddString("name", path.substr(1));
    request.AddInt32("type", static_cast<std::int32_t>(entry->kind));
    (directory ? doomed.directories : doomed.files).append(ToText(entry->name, Encoding()));
  }
  if (doomed.Count() == 0) return;
  Alerts::Show(over, AboutDeleting(doomed, Subject(MWindow::tr("Delete"))),
               [this, request](int button) {
                 if (button == 0) window_.Session().Send(request);
               });
}

void EntryCommands::ShowNewDir() {
  if (Style::InForce().EditsInPlace()) {
    window_.Listing().EditNewDirectory(MWindow::tr("New folder"));
  } else {
    AskForNewDir();
  }
}

void EntryCommands::AskForNewDir() {
  if (newDir_ == nullptr) {
    newDir_ = new NewDir(&window_);
    connect(newDir_, &NewDir::Entered, this, [this] { CreateDirectory(newDir_->Name()); });
  }
  ShowBeside(window_, newDir_);
}

void EntryCommands::CreateDirectory(const QString& name) {
  if (name.isEmpty() || IsBusy()) return;
  const auto bytes = ToServer(name, Encoding());
  if (!bytes) return window_.Warn(MissingLetters(name, window_.Session().To()));
  Message message("MKDR"_what);
  message.AddString("name", *bytes);
  window_.Ways().SelectNext(*bytes);
  window_.Session().Send(std::move(message));
}

void EntryCommands::ShowRename() {
  DirListView& listing = window_.Listing();
  const int row = listing.FirstSelected();
  if (row < 0 || listing.Rows().At(row).IsDots()) return;
  if (Style::InForce().EditsInPlace()) {
    listing.EditName(row);
  } else {
    AskForName(row);
  }
}

void EntryCommands::AskForName(int row) {
  if (renameWin_ == nullptr) {
    renameWin_ = new RenameWin(&window_);
    connect(renameWin_, &RenameWin::Entered, this, [this] {
      if (renameWin_->RenameTo().isEmpty() || IsBusy()) return;
      const auto from = ToServer(renameWin_->Original(), Encoding(), renaming_);
      if (!from)
        return window_.Warn(MissingLetters(renameWin_->Original(), window_.Session().To()));
      const auto to = ToServer(renameWin_->RenameTo(), Encoding());
      if (!to) return window_.Warn(MissingLetters(renameWin_->RenameTo(), window_.Session().To()));
      Rename(renamingIn_, *from, *to);
    });
  }
  renaming_ = window_.Listing().Rows().At(row).Name();
  renamingIn_ = window_.Session().CurrentDirectory();
  renameWin_->Fill(ToText(renaming_, Encoding()));
  ShowBeside(window_, renameWin_);
}

void EntryCommands::RenameEntry(const std::string& from, const QString& to) {
  const auto bytes = ToServer(to, Encoding(), from);
  if (bytes == from || to.isEmpty() || IsBusy()) return;
  if (!bytes) return window_.Warn(MissingLetters(to, window_.Session().To()));
  Rename(window_.Session().CurrentDirectory(), from, *bytes);
}

// Most servers replace an entry of the new name without a word.
void EntryCommands::Rename(const std::string& directory, const std::string& from,
                           const std::string& to) {
  if (from == to) return;
  Message message("RNFL"_what);
  message.AddString("original", from);
  message.AddString("renameto", to);
  message.AddString("path", directory);
  const bool elsewhere = to.find('/') != std::string::npos;
  if (!elsewhere && window_.Listing().Rows().Find(to) < 0) {
    window_.Session().Send(std::move(message));
  } else {
    AskToReplace(message, to, elsewhere);
  }
}

void EntryCommands::AskToReplace(const Message& request, const std::string& to, bool elsewhere) {
  const QString text =
      elsewhere
          ? MWindow::tr("This moves the entry to \"%1\"; the server may replace what is there.")
          : MWindow::tr("\"%1\" exists already, and the server may replace it.");
  Alerts::Show(&window_,
               {.title = MWindow::tr("Alert!"),
                .text = text.arg(ToText(to, Encoding())),
                .buttons = {MWindow::tr("&Rename"), MWindow::tr("&Cancel")},
                .preset = 1,
                .subject = Subject(MWindow::tr("Rename"))},
               [this, request](int button) {
                 if (button == 0) window_.Session().Send(request);
               });
}

void EntryCommands::Duplicate() {
  const DirListView& listing = window_.Listing();
  const int row = listing.FirstSelected();
  if (row < 0 || listing.Rows().At(row).Type() == kDirectory || IsBusy()) return;
  const std::string& name = listing.Rows().At(row).Name();
  Message message("DUPL"_what);
  message.AddString("name", name);
  message.AddString("to", FreeName(listing.Rows(), name));
  window_.Session().Send(std::move(message));
}

void EntryCommands::Cut() {
  const DirListView& listing = window_.Listing();
  CutRows rows{window_.Session().To(), window_.Session().CurrentDirectory(), {}};
  for (const int row : listing.SelectedRows()) {
    if (!listing.Rows().At(row).IsDots()) rows.names.push_back(listing.Rows().At(row).Name());
  }
  const auto count = static_cast<int>(rows.names.size());
  if (count == 0) return;
  CutRows::Cut(std::move(rows));
  window_.View().Status().SetText(
      count == 1 ? MWindow::tr("1 entry cut: paste it into another directory.")
                 : MWindow::tr("%n entries cut: paste them into another directory.", "", count));
}

void EntryCommands::Paste() {
  const CutRows rows = CutRows::Current();
  const std::string& here = window_.Session().CurrentDirectory();
  if (!rows.CanMoveTo(window_.Session().To(), here) || IsBusy()) return;
  CutRows::Forget();
  SendMove(rows.directory, rows.names, here);
}

void EntryCommands::Move(const std::vector<std::string>& names, const std::string& to) {
  if (!names.empty() && !IsBusy()) SendMove(window_.Session().CurrentDirectory(), names, to);
}

void EntryCommands::SendMove(const std::string& from, const std::vector<std::string>& names,
                             const std::string& to) {
  Message message("MOVE"_what);
  message.AddString("path", from);
  for (const std::string& name : names) message.AddString("name", name);
  message.AddString("to", to);
  window_.Session().Send(std::move(message));
  // The rows stand where they came from; here they show only anew.
  if (to == window_.Session().CurrentDirectory()) {
    window_.Ways().SelectNext(names.front());
    window_.Session().ChangeDirectory(".");
  }
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
