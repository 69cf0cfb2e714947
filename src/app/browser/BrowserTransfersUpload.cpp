#include <algorithm>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "app/browser/BrowserSession.h"
#include "app/browser/BrowserTransfers.h"
#include "app/browser/DirListView.h"
#include "app/browser/ExistingEntries.h"
#include "app/browser/MWindow.h"
#include "app/browser/SiteNames.h"
#include "app/shared/ScreenText.h"
#include "remote/RemotePath.h"
#include "util/Encodings.h"

namespace corvane {
namespace {

/// The last name of a local path.
std::string LastName(std::string_view path) {
  while (path.ends_with('/')) path.remove_suffix(1);
  return std::string(path.substr(path.rfind('/') + 1));
}

TransferPlan::Facts FactsOf(const MWListItem& item) {
  return {static_cast<RemoteEntry::Kind>(item.Type()), std::max<std::int64_t>(item.Size(), -1),
          item.Modified()};
}

}  // namespace

void BrowserTransfers::Upload(const std::vector<std::string>& paths, const std::string& below) {
  if (below.empty()) return SettleUpload(PlaceNow(), paths);
  SettleUpload({PathBelow(window_.Session().CurrentDirectory(), below), {}, false}, paths);
}

BrowserTransfers::UploadPlace BrowserTransfers::PlaceNow() const {
  UploadPlace place{window_.Session().CurrentDirectory(), {}};
  const DirListModel& rows = window_.Listing().Rows();
  place.names.reserve(static_cast<std::size_t>(rows.Count()));
  for (int row = 0; row < rows.Count(); ++row) {
    const MWListItem& item = rows.At(row);
    place.names.emplace(item.Name(), FactsOf(item));
  }
  return place;
}

std::vector<TransferPlan::Entry> BrowserTransfers::UploadEntries(
    const std::vector<std::string>& paths) {
  const Site& site = window_.Session().To();
  std::vector<TransferPlan::Entry> entries;
  entries.reserve(paths.size());
  QStringList unnamed;
  for (const std::string& path : paths) {
    const std::string last = LastName(path);
    if (auto name = Encoded(last, site.encoding)) {
      entries.push_back({.name = path, .local = std::move(*name)});
    } else {
      unnamed.append(MissingLetters(ToText(last), site));
    }
  }
  if (!unnamed.isEmpty()) window_.Warn(unnamed.join('\n'));
  return entries;
}

// What a directory holds that is not shown is not known: there the worker does as the preferences
// say, or replaces nothing.
void BrowserTransfers::SettleUpload(UploadPlace place, const std::vector<std::string>& paths) {
  const bool known = place.known;
  const auto settle = [this, known](TransferPlan& plan) {
    if (!known) plan.SettleUnseen(ExistingEntries::Preset().value_or(Policy::CreateNew));
    ExistingEntries::SettleUpload(window_, std::move(plan),
                                  [this](const TransferPlan& settled) { StartUpload(settled); });
  };
  Plan([directory = std::move(place.directory), names = std::move(place.names),
        entries =
            UploadEntries(paths)] { return TransferPlan::LookHere(directory, entries, names); },
       settle);
}

void BrowserTransfers::StartUpload(const TransferPlan& plan) {
  transferStruct description = Described(plan.folder);
  description.download = false;
  description.jobs.reserve(plan.entries.size());
  for (const TransferPlan::Entry& entry : plan.entries) {
    if (entry.leftOut) continue;
    const bool there = entry.there != TransferPlan::There::Nothing;
    description.jobs.push_back({.remote = PathBelow(plan.folder, entry.local),
                                .local = WithoutTrailingSlash(entry.name),
                                .kind = entry.kind,
                                .policy = entry.policy,
                                .there = there && entry.policy != Policy::CreateNew});
  }
  HandOver(std::move(description));
}

}  // namespace corvane
