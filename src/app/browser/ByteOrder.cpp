#include "app/browser/ByteOrder.h"

#include <algorithm>
#include <string_view>
#include <vector>

namespace corvane {
namespace {

using SortRange = std::span<SortEntry>;

/// Eight bytes of a name, letters lowered, as a number that orders as they do.
std::uint64_t NameKey(std::string_view name, std::size_t from) {
  std::uint64_t key = 0;
  for (std::size_t i = from; i < from + sizeof key; ++i) {
    key = key << 8 | (i < name.size() ? Lowered(name[i]) : 0U);
  }
  return key;
}

}  // namespace

void SortByKey(SortRange entries, bool ascending) {
  std::ranges::stable_sort(entries, [ascending](const SortEntry& a, const SortEntry& b) {
    return ascending ? a.key < b.key : b.key < a.key;
  });
}

// By the first eight bytes of the names, then each run of equal ones by the next eight, and so on:
// long names with a common beginning cost no more than others.
void SortByBytes(SortRange entries, const std::deque<MWListItem>& items, bool ascending) {
  struct Run {
    SortRange range;
    std::size_t from;
  };
  std::vector<Run> runs{{entries, 0}};
  while (!runs.empty()) {
    const auto [range, from] = runs.back();
    runs.pop_back();
    bool longer = false;
    for (SortEntry& entry : range) {
      const std::string& name = items[entry.position].Name();
      entry.key = NameKey(name, from);
      longer = longer || name.size() > from + sizeof entry.key;
    }
    SortByKey(range, ascending);
    if (!longer) continue;
    for (std::size_t begin = 0, end = 0; begin < range.size(); begin = end) {
      for (end = begin + 1; end < range.size() && range[end].key == range[begin].key;) ++end;
      if (end - begin > 1) runs.push_back({range.subspan(begin, end - begin), from + 8});
    }
  }
}

}  // namespace corvane
