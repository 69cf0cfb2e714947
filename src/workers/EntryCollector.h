#pragma once

#include <algorithm>
#include <iterator>
#include <vector>

#include "remote/RemoteSession.h"

namespace corvane {

/// Keeps the entries of a listing.
class EntryCollector final : public ListingSink {
 public:
  std::vector<RemoteEntry> entries;
  std::vector<RemoteEntry> tooLong;  ///< by their names

  void Raw(std::string_view /*text*/) override {}
  bool Add(std::vector<RemoteEntry> batch) override {
    std::ranges::move(batch, std::back_inserter(entries));
    return true;
  }
  void AddTooLong(const RemoteEntry& entry) override { tooLong.push_back(entry); }
};

}  // namespace corvane
