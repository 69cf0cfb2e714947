#pragma once

#include <string>
#include <unordered_set>
#include <vector>

namespace corvane {

class DirListView;

/// Where the user stands in a listing, by names, so that it is found again when the listing has
/// come anew: what is selected, the current row, and what is scrolled to. GUI thread.
class ListingPlace {
 public:
  [[nodiscard]] static ListingPlace Of(const DirListView& view);
  /// Goes there, as far as the names are in the listing.
  void Restore(DirListView& view) const;

 private:
  std::unordered_set<std::string> selected_;
  std::string current_;
  std::string top_;
  int scroll_ = 0;
};

/// What is selected and current, by rows that stay: for a change of what is shown. GUI thread.
class ShownPlace {
 public:
  [[nodiscard]] static ShownPlace Of(const DirListView& view);
  void Restore(DirListView& view) const;

 private:
  std::vector<bool> selected_;  // by DirListModel::IdOf
  std::int64_t current_ = -1;
};

}  // namespace corvane
