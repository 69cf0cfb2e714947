#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace corvane {

/// What the server would not do in the course of one operation on many entries: the first ones with
/// its words, all of them counted. A value; not locked.
class Refusals {
 public:
  void Add(std::string_view name, std::string_view why) {
    if (++count_ > kMostLines) return;
    while (why.ends_with('\n')) why.remove_suffix(1);
    lines_.append(name).append(": ").append(why).append("\n");
  }
  [[nodiscard]] std::size_t Count() const { return count_; }
  /// A line for each, and how many more there are.
  [[nodiscard]] std::string Text() const {
    if (count_ <= kMostLines) return lines_;
    return lines_ + "and " + std::to_string(count_ - kMostLines) + " more\n";
  }

 private:
  static constexpr std::size_t kMostLines = 10;

  std::size_t count_ = 0;
  std::string lines_;
};

}  // namespace corvane
