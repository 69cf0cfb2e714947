#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

#include "ftp/ListingLine.h"
#include "remote/RemoteEntry.h"

namespace corvane {

/// Reads a listing line by line; a line is one entry, or none. Which dialect it is the lines tell:
/// each is read by the one that fitted last, else by any that fits. Keeps no hidden state: several
/// may run at once. The text must outlive the parser.
class ListingParser {
 public:
  static constexpr std::size_t kMaxName = 4096;
  enum class Form {
    Lines,  ///< of LIST, in any dialect
    Facts,  ///< of MLSD
  };

  /// `text` is as ListingText keeps it; `now` is today where the user is.
  ListingParser(std::string_view text, std::chrono::year_month_day now, Form form = Form::Lines);

  /// The next entry, "." and ".." left out; false at the end of the text.
  [[nodiscard]] bool Next(RemoteEntry& entry);

  /// How many lines so far were neither entries nor what stands about them.
  [[nodiscard]] std::size_t Strange() const { return strange_; }
  /// How many lines so far were entries; "." and ".." count.
  [[nodiscard]] std::size_t Known() const { return known_; }
  /// The entries so far that were left out because of their names' length; their names are cut,
  /// and still too long.
  [[nodiscard]] const std::vector<RemoteEntry>& TooLong() const { return tooLong_; }
  /// How many entries so far have a name that cannot be told.
  [[nodiscard]] std::size_t Unclear() const { return unclear_; }

 private:
  [[nodiscard]] std::string_view TakeLine();
  [[nodiscard]] bool Read(std::string_view line, RemoteEntry& entry);
  [[nodiscard]] bool ReadLine(ListingLine& line, RemoteEntry& entry);

  std::string_view rest_;
  std::chrono::year_month_day now_;
  Form form_;
  ReadListingLine fits_;  // the dialect of the last entry
  ListingColumns columns_ = ListingColumns::None;
  std::optional<bool> doubled_;  // lines end in CR CR LF, of which the text has the first CR still
  std::size_t strange_ = 0;
  std::size_t known_ = 0;
  std::vector<RemoteEntry> tooLong_;
  std::size_t unclear_ = 0;
};

/// Today where the user is.
[[nodiscard]] std::chrono::year_month_day Today();

}  // namespace corvane
