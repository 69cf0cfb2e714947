#include "app/browser/BrowserTransfers.h"

#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <utility>

#include "app/browser/BrowserHost.h"
#include "app/browser/BrowserLink.h"
#include "app/browser/BrowserPane.h"
#include "app/browser/BrowserSession.h"
#include "app/browser/BrowserView.h"
#include "app/browser/DirListView.h"
#include "app/browser/ExistingEntries.h"
#include "app/browser/MWindow.h"
#include "app/browser/RowDrag.h"
#include "app/browser/SiteNames.h"
#include "app/browser/UploadPanel.h"
#include "app/shared/GuiThread.h"
#include "app/shared/ScreenText.h"
#include "app/shared/Symbols.h"
#include "app/shared/TransferView.h"
#include "app/shared/Windows.h"
#include "kit/Background.h"
#include "remote/RemotePath.h"
#include "settings/ProcessSettings.h"
#include "util/Encodings.h"
#include "util/ErrorText.h"
#include "util/LocalFolder.h"

namespace corvane {
namespace {

std::string LocalPath(const QString& path) {
  return QFile::encodeName(path).toStdString();
}

/// The last name of a local path.
std::string LastName(std::string_view path) {
  while (path.ends_with('/')) path.remove_suffix(1);
  return std::string(path.substr(path.rfind('/') + 1));
}

// The panels do not block the window: what they are about is settled when they open.
void ShowPanel(QFileDialog* panel) {
  panel->setAttribute(Qt::WA_DeleteOnClose);
  panel->setModal(false);
  panel->show();
}

// Names on this machine's disk are UTF-8.
TransferPlan::Entry AsEntry(const MWListItem& item) {
  const fileStruct record = item.GetFileInfo();
  return {.name = record.name,
          .local = Decoded(record.name, item.Attributes().encoding),
          .kind = static_cast<RemoteEntry::Kind>(record.type),
          .size = record.size < 0 ? -1 : record.size};
}

}  // namespace

BrowserTransfers::BrowserTransfers(BrowserHost& host, MWindow& window)
    : QObject(&window), host_(host), window_(window) {}

// A name that cannot be a local one may still get another in the panel where it is alone.
BrowserTransfers::Chosen BrowserTransfers::Selected() const {
  Chosen chosen{window_.Session().CurrentDirectory(), {}, {}};
  const DirListModel& rows = window_.Listing().Rows();
  const std::vector<int> selected = window_.Listing().SelectedRows();
  for (const int row : selected) {
    const MWListItem& item = rows.At(row);
    if (selected.size() > 1 && item.IsDots()) continue;
    TransferPlan::Entry entry = AsEntry(item);
    if (selected.size() > 1 && !IsSafeLocalName(entry.local)) {
      chosen.refused.append(item.NameText());
    } else {
      chosen.entries.push_back(std::move(entry));
    }
  }
  return chosen;
}

BrowserTransfers::Chosen BrowserTransfers::Named(const std::string& name) const {
  Chosen chosen{window_.Session().CurrentDirectory(), {}, {}};
  const DirListModel& rows = window_.Listing().Rows();
  const int row = rows.Find(name);
  if (row >= 0) chosen.entries.push_back(AsEntry(rows.At(row)));
  return chosen;
}

void BrowserTransfers::WarnOfNames(const QStringList& refused) {
  if (refused.isEmpty()) return;
  window_.Warn(MWindow::tr("These names cannot be names of local files and are left out:") +
               "\n\n" + refused.join('\n'));
}

void BrowserTransfers::Download(Chosen chosen) {
  WarnOfNames(chosen.refused);
  if (chosen.entries.empty()) return;
  const std::string folder = ProcessSettings::Get().DwnldDir;
  if (folder.empty() || folder == "empty") return SaveDialogBox(std::move(chosen));
  Look(folder, chosen, [this, chosen](TransferPlan plan) {
    // A folder that has gone is no folder chosen.
    if (plan.error != 0) return SaveDialogBox(chosen);
    SettleDownload(chosen.directory, std::move(plan));
  });
}

void BrowserTransfers::DownloadInto(const std::string& folder, Chosen chosen) {
  WarnOfNames(chosen.refused);
  if (chosen.entries.empty()) return;
  // In the panel a name that no local file can have may be changed.
  const bool needsName =
      chosen.entries.size() == 1 && !IsSafeLocalName(chosen.entries.front().local);
  if (folder.empty() || needsName) return SaveDialogBox(std::move(chosen));
  LookAndSettle(folder, chosen);
}

void BrowserTransfers::DragRows(int pressed) {
  Chosen chosen = Selected();
  if (chosen.entries.empty()) return WarnOfNames(chosen.refused);
  DirListView& listing = window_.Listing();
  const MWListItem& row = listing.Rows().At(pressed);
  const auto others = static_cast<int>(chosen.entries.size()) - 1;
  const QString name = row.NameText();
  const QString text = others == 0 ? name : MWindow::tr("%1 and %n more", "", others).arg(name);
  const std::string local = Decoded(row.Name(), row.Attributes().encoding);
  const std::string proposed = IsSafeLocalName(local) ? local : "download";
  RowDrag::Begin(RowDrag::Picture(listing, Symbol(SymbolOf(row.Kind())), text), proposed,
                 [self = QPointer(this), chosen = std::move(chosen)](const std::string& folder) {
                   if (self.isNull() || self->window_.Session().Control() == nullptr) return;
                   self->DownloadInto(folder, chosen);
                 });
}

void BrowserTransfers::SaveDialogBox(Chosen chosen) {
  if (chosen.entries.size() == 1) {
    AskForName(std::move(chosen));
  } else {
    AskForFolder(std::move(chosen));
  }
}

// What is asked about last counts: a panel that is still open makes way.
void BrowserTransfers::AskForName(Chosen chosen) {
  delete namePanel_;
  namePanel_ = new QFileDialog(&window_, MWindow::tr("Save"));
  namePanel_->setAcceptMode(QFileDialog::AcceptSave);
  namePanel_->setOption(QFileDialog::DontConfirmOverwrite);
  namePanel_->selectFile(ToText(chosen.entries.front().local));
  connect(namePanel_, &QFileDialog::fileSelected, this,
          [this, chosen = std::move(chosen)](const QString& path) mutable {
            const QFileInfo chosenFile(path);
            chosen.entries.front().local = LocalPath(chosenFile.fileName());
            LookAndSettle(LocalPath(chosenFile.path()), chosen);
          });
  ShowPanel(namePanel_);
}

void BrowserTransfers::AskForFolder(Chosen chosen) {
  delete folderPanel_;
  folderPanel_ = new QFileDialog(&window_, MWindow::tr("Download"));
  folderPanel_->setFileMode(QFileDialog::Directory);
  folderPanel_->setOption(QFileDialog::ShowDirsOnly);
  folderPanel_->setLabelText(QFileDialog::Accept, MWindow::tr("Select"));
  connect(folderPanel_, &QFileDialog::fileSelected, this,
          [this, chosen = std::move(chosen)](const QString& path) {
            LookAndSettle(LocalPath(path), chosen);
          });
  ShowPanel(folderPanel_);
}

// A folder may lie on a disk that does not answer.
void BrowserTransfers::Look(const std::string& folder, const Chosen& chosen, Planned then) {
  const std::string& first = chosen.entries.front().local;
  if (!IsSafeLocalName(first)) {
    window_.Warn(MWindow::tr("\"%1\" cannot be the name of a local file.").arg(ToText(first)));
    return;
  }
  const auto look = [self = QPointer(this), folder, entries = chosen.entries,
                     then = std::move(then)] {
    OnGuiThread([self, then, plan = TransferPlan::Look(folder, entries)] {
      if (!self.isNull() && self->window_.Session().Control() != nullptr) then(plan);
    });
  };
  if (!Background::Start("plan", look)) {
    window_.Warn(MWindow::tr("The system has no thread to give."));
  }
}

void BrowserTransfers::LookAndSettle(const std::string& folder, const Chosen& chosen) {
  Look(folder, chosen, [this, directory = chosen.directory](TransferPlan plan) {
    if (plan.error == 0) return SettleDownload(directory, std::move(plan));
    window_.Warn(MWindow::tr("Nothing can be saved in \"%1\": %2")
                     .arg(ToText(plan.folder), ToText(ErrorText(plan.error))));
  });
}

void BrowserTransfers::SettleDownload(const std::string& directory, TransferPlan plan) {
  ExistingEntries::SettleDownload(
      window_, std::move(plan),
      [this, directory](const TransferPlan& settled) { Start(directory, settled); });
}

void BrowserTransfers::Start(const std::string& directory, const TransferPlan& plan) {
  transferStruct description = Described(directory);
  description.targetFolder = plan.folder;
  for (const TransferPlan::Entry& entry : plan.entries) {
    if (entry.policy == Policy::Skip) continue;
    description.jobs.push_back({PathBelow(directory, entry.name),
                                PathBelow(plan.folder, entry.local), entry.kind, entry.size,
                                entry.policy});
    description.size = entry.size;
  }
  HandOver(std::move(description));
}

void BrowserTransfers::ChooseUploads() {
  delete uploadPanel_;
  auto* panel = new UploadPanel(&window_);
  connect(panel, &UploadPanel::Chosen, this, [this, place = PlaceNow()](const QStringList& paths) {
    std::vector<std::string> raw;
    for (const QString& path : paths) raw.push_back(LocalPath(path));
    SettleUpload(place, raw);
  });
  uploadPanel_ = panel;
  ShowPanel(panel);
}

// What a directory holds that is not shown is not known: there the worker replaces nothing.
void BrowserTransfers::Upload(const std::vector<std::string>& paths, const std::string& below) {
  if (below.empty()) return SettleUpload(PlaceNow(), paths);
  SettleUpload({PathBelow(window_.Session().CurrentDirectory(), below), {}}, paths);
}

BrowserTransfers::UploadPlace BrowserTransfers::PlaceNow() const {
  UploadPlace place{window_.Session().CurrentDirectory(), {}};
  const DirListModel& rows = window_.Listing().Rows();
  for (int row = 0; row < rows.Count(); ++row) place.names.insert(rows.At(row).Name());
  return place;
}

void BrowserTransfers::SettleUpload(const UploadPlace& place,
                                    const std::vector<std::string>& paths) {
  TransferPlan plan{place.directory, 0, {}};
  for (const std::string& path : paths) {
    TransferPlan::Entry& entry = plan.entries.emplace_back();
    const auto name = Encoded(LastName(path), window_.Session().To().encoding);
    if (!name) {
      plan.entries.pop_back();
      window_.Warn(MissingLetters(ToText(LastName(path)), window_.Session().To()));
      continue;
    }
    entry.name = path;
    entry.local = *name;
    if (place.names.contains(entry.local)) entry.there = TransferPlan::There::Other;
  }
  ExistingEntries::SettleUpload(window_, std::move(plan),
                                [this](const TransferPlan& settled) { StartUpload(settled); });
}

void BrowserTransfers::StartUpload(const TransferPlan& plan) {
  transferStruct description = Described(plan.folder);
  description.download = false;
  for (const TransferPlan::Entry& entry : plan.entries) {
    if (entry.policy == Policy::Skip) continue;
    description.jobs.push_back({PathBelow(plan.folder, entry.local),
                                WithoutTrailingSlash(entry.name), entry.kind, -1, entry.policy});
  }
  HandOver(std::move(description));
}

transferStruct BrowserTransfers::Described(const std::string& directory) const {
  transferStruct description;
  description.site = window_.Session().To();
  description.remoteDirectory = directory;
  const SettingsValues settings = ProcessSettings::Get();
  description.bufferSize = settings.buffersize;
  description.keepTimes = settings.keepTimes;
  return description;
}

void BrowserTransfers::HandOver(transferStruct description) {
  if (description.jobs.empty()) return;
  if (window_.View().Pane().UsesSameConnection()) return TransferHere(std::move(description));
  host_.Transfer(std::move(description), Listener());
}

// The commands are disabled while a transfer runs here, but a panel may still be open.
void BrowserTransfers::TransferHere(transferStruct description) {
  const BrowserSession& session = window_.Session();
  TransferView& view = window_.View().Transfer();
  if (session.Control() == nullptr || view.Busy()) {
    return window_.Warn(MWindow::tr("This connection is busy with another transfer."));
  }
  window_.Listing().DisableAll();
  view.Begin(std::move(description), Listener(),
             [this, looper = session.Control(), link = session.Link()](
                 std::shared_ptr<TransferUi> row, transferStruct what) {
               return host_.Workers().sameConnection(looper, link, std::move(row), std::move(what));
             });
}

TransferListener BrowserTransfers::Listener() {
  const QPointer<MWindow> window(&window_);
  return {.arrived =
              [window](const Message& entry) {
                if (!window.isNull()) window->MessageReceived(entry);
              },
          .noted =
              [window](const Text& note) {
                if (!window.isNull()) window->Session().Log(note.English() + "\n");
              }};
}

}  // namespace corvane
