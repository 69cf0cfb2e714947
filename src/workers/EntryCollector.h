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

  void Raw(std::string_view /*text*/) override {}
  bool Add(std::vector<RemoteEntry> batch) override {
    std::ranges::move(batch, std::back_inserter(entries));
    return true;
  }
};

}  // namespace corvane
