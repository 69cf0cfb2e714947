#include "app/browser/EntryWindows.h"

#include <QApplication>
#include <QClipboard>
#include <algorithm>
#include <utility>

#include "app/browser/BrowserHost.h"
#include "app/browser/BrowserLink.h"
#include "app/browser/BrowserSession.h"
#include "app/browser/BrowserTransfers.h"
#include "app/browser/DirListView.h"
#include "app/browser/EntryCommands.h"
#include "app/browser/MWindow.h"
#include "app/browser/Navigation.h"
#include "app/browser/SiteNames.h"
#include "app/shared/ScreenText.h"
#include "app/shared/Style.h"
#include "app/shared/Windows.h"
#include "remote/RemotePath.h"
#include "settings/ProcessSettings.h"
#include "sites/SiteOf.h"
#include "util/Url.h"

namespace corvane {
namespace {

// A row that has turned out to lead to a file is a link still.
RemoteEntry EntryOf(const MWListItem& item) {
  const EntryAttributes& attributes = item.Attributes();
  RemoteEntry entry{.name = item.Name(),
                    .kind = static_cast<RemoteEntry::Kind>(item.Type()),
                    .modified = item.Modified(),
                    .mode = attributes.permissions,
                    .owner = attributes.owner,
                    .group = attributes.group,
                    .linkTarget = attributes.linkTarget};
  if (item.Size() >= 0) entry.size = item.Size();
  if (item.IsLink() || !entry.linkTarget.empty()) entry.kind = RemoteEntry::Kind::Link;
  return entry;
}

}  // namespace

EntryWindows::EntryWindows(BrowserHost& app, MWindow& window)
    : QObject(&window), app_(app), window_(window) {}

void EntryWindows::ShowProperties() {
  DirListView& listing = window_.Listing();
  std::vector<RemoteEntry> entries;
  for (const int row : listing.SelectedRows()) {
    const MWListItem& item = listing.Rows().At(row);
    if (!item.IsDots()) entries.push_back(EntryOf(item));
  }
  if (entries.empty()) return;
  app_.ShowProperties(*this, window_.Session().CurrentDirectory(), std::move(entries), &window_);
}

void EntryWindows::ShowFind() {
  app_.ShowFind(*this, window_.Session().CurrentDirectory(), &window_);
}

const Site& EntryWindows::Server() const {
  return window_.Session().To();
}

QString EntryWindows::TitleOf(const QString& place) const {
  return Style::InForce().TitleOf(TitleFor(Server(), place));
}

EntryTexts EntryWindows::TextsOf(const RemoteEntry& entry) const {
  const MWListItem item(entry, std::make_shared<const EntryAttributes>(
                                   EntryAttributes{.permissions = entry.mode,
                                                   .owner = entry.owner,
                                                   .group = entry.group,
                                                   .linkTarget = entry.linkTarget,
                                                   .encoding = Server().encoding}));
  const Style& style = Style::InForce();
  return {SymbolOf(item.Kind()), item.NameText(), NameOf(item.Kind()),
          style.EntrySize(item.Size(), item.SizeText()),
          style.EntryDate(item.Day(), item.Time(), item.DateText())};
}

std::shared_ptr<MThread> EntryWindows::Walk(const WalkOrder& order, std::shared_ptr<WalkUi> ui) {
  const BrowserSession& session = window_.Session();
  if (session.Control() == nullptr) return nullptr;
  const int own = session.To().connections;
  const int most = own > 0 ? own : ProcessSettings::Get().connectionsPerTransfer;
  const auto walk =
      app_.Workers().walk(session.Control(), session.Link(), session.To(),
                          std::clamp(most, 1, Site::kMostConnections), order, std::move(ui));
  return walk != nullptr && walk->Run() ? walk : nullptr;
}

void EntryWindows::LookAt(const std::string& directory, const std::vector<RemoteEntry>& entries) {
  BrowserSession& session = window_.Session();
  if (directory != session.CurrentDirectory() || session.Control() == nullptr) return;
  // Few servers tell of a single directory.
  const auto isFile = [](const RemoteEntry& entry) {
    return entry.kind == RemoteEntry::Kind::File;
  };
  if (!std::ranges::all_of(entries, isFile)) {
    window_.Ways().SelectNext(entries.front().name);
    if (session.IsReady()) session.ChangeDirectory(".");
    return;
  }
  for (const RemoteEntry& entry : entries)
    session.LookAt(entry.name, static_cast<std::int32_t>(entry.kind), entry.size.value_or(0));
}

void EntryWindows::Show(const std::string& directory, const std::string& name) {
  BringForward(&window_);
  if (!window_.Session().IsReady()) return QApplication::beep();
  window_.Ways().SelectNext(name);
  window_.Session().ChangeDirectory(directory);
}

void EntryWindows::Download(const std::vector<FoundEntry>& entries) {
  window_.Transfers().Download(entries);
}

void EntryWindows::Delete(QWidget* window, const std::vector<FoundEntry>& entries) {
  window_.Entries().Delete(window, entries);
}

void EntryWindows::CopyAddresses(const std::vector<FoundEntry>& entries) {
  Url url = UrlOf(Server(), {});
  QString text;
  for (const FoundEntry& one : entries) {
    url.path = PathBelow(one.directory, one.entry.name);
    text += QString::fromStdString(url.Written()) + '\n';
  }
  if (!text.isEmpty()) QApplication::clipboard()->setText(text);
}

void EntryWindows::WhenGone(QObject* context,
                            std::function<void(const std::string&, const std::string&)> gone) {
  connect(&window_, &MWindow::EntryGone, context, std::move(gone));
}

}  // namespace corvane
