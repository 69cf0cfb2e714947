#pragma once

#include <chrono>
#include <cstddef>
#include <string_view>

#include "remote/RemoteEntry.h"

namespace corvane {

/// Reads a listing line by line; a line is one entry, or none. Keeps no hidden state: several may
/// run at once. The text must outlive the parser.
class ListingParser {
 public:
  static constexpr std::size_t kMaxName = 4096;
  enum class Form {
    Lines,  ///< of LIST: the long format, or that of DIR
    Facts,  ///< of MLSD
  };

  /// `text` has no carriage returns; `now` is today where the user is.
  ListingParser(std::string_view text, std::chrono::year_month_day now, Form form = Form::Lines)
      : rest_(text), now_(now), form_(form) {}

  /// The next entry, "." and ".." left out; false at the end of the text.
  [[nodiscard]] bool Next(RemoteEntry& entry);

  /// How many lines so far were of no known form.
  [[nodiscard]] std::size_t Strange() const { return strange_; }
  /// How many lines so far were entries; "." and ".." count.
  [[nodiscard]] std::size_t Known() const { return known_; }
  /// How many entries so far were left out because of their names' length.
  [[nodiscard]] std::size_t TooLong() const { return tooLong_; }

 private:
  [[nodiscard]] bool Read(std::string_view line, RemoteEntry& entry) const;

  std::string_view rest_;
  std::chrono::year_month_day now_;
  Form form_;
  bool first_ = true;
  std::size_t strange_ = 0;
  std::size_t known_ = 0;
  std::size_t tooLong_ = 0;
};

/// Today where the user is.
[[nodiscard]] std::chrono::year_month_day Today();

}  // namespace corvane
