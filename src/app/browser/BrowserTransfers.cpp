#include "app/browser/BrowserTransfers.h"

#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <algorithm>
#include <memory>
#include <optional>
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
#include "remote/ExactTime.h"
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

// The panels do not block the window: what they are about is settled when they open.
void ShowPanel(QFileDialog* panel) {
  panel->setAttribute(Qt::WA_DeleteOnClose);
  panel->setModal(false);
  panel->show();
}

// Names on this machine's disk are UTF-8.
TransferPlan::Entry AsEntry(const MWListItem& item) {
  return {.name = item.Name(),
          .local = Decoded(item.Name(), item.Attributes().encoding),
          .kind = static_cast<RemoteEntry::Kind>(item.Type()),
          .size = std::max<std::int64_t>(item.Size(), -1),
          .modified = item.Modified()};
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
  Look(folder, std::move(chosen.entries), [this, directory = chosen.directory](TransferPlan& plan) {
    // A folder that has gone is no folder chosen.
    if (plan.error != 0) return SaveDialogBox({directory, std::move(plan.entries), {}});
    SettleDownload(directory, plan);
  });
}

// From different directories they go by their paths below the root.
void BrowserTransfers::Download(const std::vector<FoundEntry>& entries) {
  if (entries.empty()) return;
  const std::string& first = entries.front().directory;
  const bool same =
      std::ranges::all_of(entries, [&](const FoundEntry& one) { return one.directory == first; });
  Chosen chosen{same ? first : "/", {}, {}};
  const std::string& encoding = window_.Session().To().encoding;
  for (const FoundEntry& one : entries) {
    const RemoteEntry& entry = one.entry;
    const std::string path = PathBelow(one.directory, entry.name);
    if (!same && !path.starts_with('/')) continue;
    std::string local = Decoded(entry.name, encoding);
    if (entries.size() > 1 && !IsSafeLocalName(local)) {
      chosen.refused.append(ToText(entry.name, encoding));
      continue;
    }
    chosen.entries.push_back({.name = same ? entry.name : path.substr(1),
                              .local = std::move(local),
                              .kind = entry.kind,
                              .size = entry.size.value_or(-1),
                              .modified = entry.modified});
  }
  Download(std::move(chosen));
}

void BrowserTransfers::DownloadInto(const std::string& folder, Chosen chosen) {
  WarnOfNames(chosen.refused);
  if (chosen.entries.empty()) return;
  // In the panel a name that no local file can have may be changed.
  const bool needsName =
      chosen.entries.size() == 1 && !IsSafeLocalName(chosen.entries.front().local);
  if (folder.empty() || needsName) return SaveDialogBox(std::move(chosen));
  LookAndSettle(folder, std::move(chosen));
}

// What is sent back to a link would take its place: it goes to the file that it leads to, which may
// be a link as well.
void BrowserTransfers::OpenSelected(bool edits) {
  const std::string directory = window_.Session().CurrentDirectory();
  std::vector<EditRequest> requests;
  for (const int row : window_.Listing().SelectedRows()) {
    const MWListItem& item = window_.Listing().Rows().At(row);
    if (item.IsDots() || item.Type() == kDirectory) continue;
    const EntryAttributes& attributes = item.Attributes();
    const bool leads = !attributes.linkTarget.empty();
    requests.push_back({.site = window_.Session().To(),
                        .remote = PathFrom(directory, leads ? attributes.linkTarget : item.Name()),
                        .name = Decoded(item.Name(), attributes.encoding),
                        .size = leads ? -1 : item.Size(),
                        .edits = edits,
                        .inPlace = item.IsLink(),
                        .listener = Listener()});
  }
  if (!requests.empty()) host_.OpenRemote(std::move(requests));
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

void BrowserTransfers::Look(const std::string& folder, std::vector<TransferPlan::Entry> entries,
                            Planned then) {
  const std::string& first = entries.front().local;
  if (!IsSafeLocalName(first)) {
    window_.Warn(MWindow::tr("\"%1\" cannot be the name of a local file.").arg(ToText(first)));
    return;
  }
  Plan([folder, given = std::move(entries)] { return TransferPlan::Look(folder, given); },
       std::move(then));
}

// A path may lie on a disk that does not answer.
void BrowserTransfers::Plan(std::function<TransferPlan()> make, Planned then) {
  const auto look = [self = QPointer(this), make = std::move(make), then = std::move(then)] {
    const auto plan = std::make_shared<TransferPlan>(make());
    OnGuiThread([self, then, plan] {
      if (!self.isNull() && self->window_.Session().Control() != nullptr) then(*plan);
    });
  };
  if (!Background::Start("plan", look)) {
    window_.Warn(MWindow::tr("The system has no thread to give."));
  }
}

void BrowserTransfers::LookAndSettle(const std::string& folder, Chosen chosen) {
  Look(folder, std::move(chosen.entries), [this, directory = chosen.directory](TransferPlan& plan) {
    if (plan.error == 0) return SettleDownload(directory, plan);
    window_.Warn(MWindow::tr("Nothing can be saved in \"%1\": %2")
                     .arg(ToText(plan.folder), ToText(ErrorText(plan.error))));
  });
}

void BrowserTransfers::SettleDownload(const std::string& directory, TransferPlan& plan) {
  ExistingEntries::SettleDownload(
      window_, std::move(plan),
      [this, directory](const TransferPlan& settled) { Start(directory, settled); });
}

void BrowserTransfers::Start(const std::string& directory, const TransferPlan& plan) {
  transferStruct description = Described(directory);
  description.targetFolder = plan.folder;
  description.jobs.reserve(plan.entries.size());
  for (const TransferPlan::Entry& entry : plan.entries) {
    if (entry.leftOut) continue;
    description.jobs.push_back({PathBelow(directory, entry.name),
                                PathBelow(plan.folder, entry.local), entry.kind, entry.size,
                                entry.policy, ExactTime(entry.modified)});
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

transferStruct BrowserTransfers::Described(const std::string& directory) const {
  transferStruct description;
  description.site = window_.Session().To();
  description.remoteDirectory = directory;
  const SettingsValues settings = ProcessSettings::Get();
  description.bufferSize = settings.buffersize;
  description.keepTimes = settings.keepTimes;
  description.checks = settings.compareChecksums;
  description.usesPartNames = settings.partNames;
  const int own = description.site.connections;
  description.connections =
      std::clamp(own > 0 ? own : settings.connectionsPerTransfer, 1, Site::kMostConnections);
  return description;
}

void BrowserTransfers::HandOver(transferStruct description) {
  if (description.jobs.empty()) {
    return window_.ShowStatus(Text("Everything is there already."));
  }
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
  view.Begin(
      std::move(description), Listener(),
      [this, looper = session.Control(), link = session.Link()](
          std::shared_ptr<TransferUi> row, transferStruct what, std::shared_ptr<JobBoard> jobs) {
        return host_.Workers().sameConnection(looper, link, std::move(row), std::move(what),
                                              std::move(jobs));
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
