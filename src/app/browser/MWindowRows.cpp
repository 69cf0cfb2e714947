#include <utility>

#include "app/browser/BrowserSession.h"
#include "app/browser/BrowserView.h"
#include "app/browser/DirListView.h"
#include "app/browser/MWindow.h"
#include "app/browser/Navigation.h"
#include "remote/RemotePath.h"

namespace corvane {

void MWindow::GetRidofListing() {
  navigation_->ListingBegins();
  view_->ClearListing();
}

void MWindow::AddRows(NewRows rows) {
  view_->Listing().Rows().Append(std::move(rows));
}

void MWindow::ListingEnded(bool whole) {
  navigation_->ListingEnded();
  view_->Listing().FinishListing(whole);
  view_->ShowCount();
}

void MWindow::RemoveRow(const std::string& name, const std::string& directory) {
  const auto [above, last] = SplitPath(PathBelow(directory, name));
  if (above == session_->CurrentDirectory()) view_->RemoveRow(last);
  Q_EMIT EntryGone(directory, name);
}

void MWindow::RenameRow(const std::string& from, const std::string& to,
                        const std::string& directory) {
  if (directory == session_->CurrentDirectory()) view_->RenameRow(from, to);
}

void MWindow::UpdateRow(const MWListItem& item, const std::string& directory) {
  if (directory == session_->CurrentDirectory()) view_->ShowEntry(item);
}

void MWindow::ChangeValues(const std::string& name, std::int64_t size) {
  view_->ChangeValues(name, size);
}

}  // namespace corvane
