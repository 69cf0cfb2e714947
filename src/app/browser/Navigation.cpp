#include "app/browser/Navigation.h"

#include <utility>

#include "app/browser/BrowserSession.h"
#include "app/browser/BrowserView.h"
#include "app/browser/DirListView.h"
#include "app/browser/MWindow.h"
#include "app/browser/PathField.h"
#include "app/browser/SiteNames.h"
#include "remote/RemotePath.h"

namespace corvane {

Navigation::Navigation(MWindow& window) : QObject(&window), window_(window) {}

void Navigation::Back() {
  history_.ExpectBack();
  window_.Session().ChangeDirectory(history_.Back());
}

void Navigation::Forward() {
  history_.ExpectForward();
  window_.Session().ChangeDirectory(history_.Forward());
}

void Navigation::Home() {
  window_.Session().ChangeDirectory(home_);
}

void Navigation::PathEntered() {
  PathField& path = window_.View().Path();
  if (path.text().isEmpty()) return;
  const auto bytes = path.Bytes();
  if (!bytes) return window_.Warn(MissingLetters(path.text(), window_.Session().To()));
  path.setModified(false);
  window_.ShowStatus(Text("Changing Dir.."));
  window_.Session().ChangeDirectory(*bytes);
}

void Navigation::ChangeDirectory() {
  if (window_.View().Path().hasFocus()) return PathEntered();
  const DirListView& listing = window_.Listing();
  const int row = listing.FirstSelected();
  if (row >= 0 && listing.Rows().At(row).Type() == kDirectory) {
    window_.Session().ChangeDirectory(listing.Rows().At(row).Name());
  }
}

void Navigation::Visit(const std::string& path) {
  if (home_.empty()) home_ = path;
  steps_ = history_.Visit(path);
  if (path != listed_) window_.View().CloseFilter();
  window_.View().Path().ShowPath(path);
}

// One listing may begin twice: when the directory is entered, and when its text comes.
void Navigation::ListingBegins() {
  constexpr std::size_t kMostPlaces = 100;
  if (listed_.empty() || std::exchange(begun_, true)) return;
  if (places_.size() > kMostPlaces) places_.clear();
  places_.insert_or_assign(listed_, ListingPlace::Of(window_.Listing()));
}

// Coming up from a directory, one finds it selected; coming back, what one had selected.
void Navigation::ListingEnded() {
  begun_ = false;
  const std::string left = std::exchange(listed_, window_.Session().CurrentDirectory());
  const std::string wanted = std::exchange(next_, {});
  DirListView& listing = window_.Listing();
  const auto place = places_.find(listed_);
  if (place != places_.end()) listing.RestoreAfterListing(place->second);
  const auto [above, name] = SplitPath(left);
  const bool stepped = std::exchange(steps_, false);
  if (left != listed_ && above == listed_ && !stepped) listing.SelectAfterListing(name);
  if (!wanted.empty()) listing.SelectAfterListing(wanted);
}

std::vector<std::string> Navigation::Below() const {
  constexpr std::size_t kMost = 2000;
  std::vector<std::string> paths;
  const DirListModel& rows = window_.Listing().Rows();
  for (int row = 0; row < rows.Count() && paths.size() < kMost; ++row) {
    const MWListItem& item = rows.At(row);
    if (item.Type() == kDirectory && !item.IsDots()) {
      paths.push_back(PathBelow(window_.Session().CurrentDirectory(), item.Name()));
    }
  }
  return paths;
}

}  // namespace corvane
