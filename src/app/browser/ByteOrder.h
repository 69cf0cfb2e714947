#pragma once

#include <cstdint>
#include <deque>
#include <span>

#include "app/browser/MWListItem.h"

namespace corvane {

/// A row's place in a sort by number.
struct SortEntry {
  std::uint64_t key;
  std::uint32_t position;
};

/// Sorts by the keys; what is equal stays as it stands.
void SortByKey(std::span<SortEntry> entries, bool ascending);

/// Sorts by the bytes of the names, ASCII letters lowered; what is equal stays as it stands.
void SortByBytes(std::span<SortEntry> entries, const std::deque<MWListItem>& items, bool ascending);

}  // namespace corvane
