#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace corvane {

/// The file that holds the raw text of a window's latest listing, in a directory that only this
/// user can read and that goes with the process. The file goes with the object. One thread at a
/// time.
class ListingCache {
 public:
  ListingCache();
  ~ListingCache();
  ListingCache(const ListingCache&) = delete;
  ListingCache& operator=(const ListingCache&) = delete;

  /// Removes the directory with all that is in it, for a process that ends without waiting for its
  /// threads. Any thread.
  static void RemoveAll();

  /// Replaces the text by that of `directory`. Failures are silent: the listing is shown all the
  /// same.
  void WriteListing(std::string_view directory, std::string_view text);
  /// Whose listing it is; empty before the first.
  [[nodiscard]] const std::string& Directory() const { return directory_; }

  /// Hands the text over piece by piece until `take` returns false; false when it cannot be read.
  bool Read(const std::function<bool(std::string_view)>& take) const;

  /// Empty when no directory could be made.
  [[nodiscard]] const std::string& Path() const { return path_; }

 private:
  std::string path_;
  std::string directory_;
};

}  // namespace corvane
