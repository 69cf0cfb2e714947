#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "kit/Text.h"

namespace corvane {

/// What was not done in the course of one operation on many entries: the first ones with the
/// reason, all of them counted. A value; not locked.
class Refusals {
 public:
  /// `name` is raw bytes; `entries` of them share the reason and its line.
  void Add(std::string_view name, const Text& why, std::size_t entries = 1) {
    count_ += entries;
    if (lines_.size() == kMostLines) return;
    told_ += entries;
    lines_.push_back(Text("%1: %2", name, why));
  }
  [[nodiscard]] std::size_t Count() const { return count_; }
  /// A line for each, and how many more there are.
  [[nodiscard]] Text Lines() const {
    std::vector<Text> lines = lines_;
    if (count_ > told_) lines.push_back(Text("and %1 more", count_ - told_));
    return Text::Lines(std::move(lines));
  }

 private:
  static constexpr std::size_t kMostLines = 10;

  std::size_t count_ = 0;
  std::size_t told_ = 0;  // those of the lines
  std::vector<Text> lines_;
};

}  // namespace corvane
