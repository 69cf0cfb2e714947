#pragma once

#include <cstddef>
#include <cstdint>
#include <ctime>
#include <string>
#include <string_view>

#include "ftp/fileStruct.h"

namespace corvane {

/// Reads a listing in the long format of `ls -l`, entry by entry. Keeps no hidden state: several
/// may run at once. The text must outlive the parser.
///
/// Blank and newline both separate the fields before the name, so a line that is too short takes
/// what it lacks from the next one; only the name ends at a newline.
class ListingParser {
 public:
  /// Parsing stops at this many entries.
  static constexpr std::size_t kMaxEntries = 10'000'000;

  /// The fields of one entry as they stand in the text; empty where the text ended before them.
  struct Fields {
    std::string_view permissions;
    std::string_view owner;
    std::string_view group;
    std::string_view size;
    std::string_view month;
    std::string_view day;
    std::string_view timeOrYear;
    std::string_view name;
    std::int32_t type = kFile;
  };

  /// `totals`: whether a leading "total" line is skipped.
  ListingParser(std::string_view text, bool totals);

  /// The next entry, "." and ".." left out; false at the end.
  [[nodiscard]] bool Next(Fields& fields);

 private:
  [[nodiscard]] std::string_view Token(std::string_view separators);

  std::string_view rest_;
};

/// Turns the fields of one listing into records. What an entry lacks it keeps from the one before.
class EntryMaker {
 public:
  /// `now` is the local time; entries with a time but no year lie in the twelve months before it.
  explicit EntryMaker(const std::tm& now);

  /// The record of one entry, good until the next call.
  [[nodiscard]] const fileStruct& Make(const ListingParser::Fields& fields);

  /// The row of "." or "..".
  [[nodiscard]] fileStruct Dots(std::string_view name) const;

 private:
  void SetSize(const ListingParser::Fields& fields);
  void SetDate(const ListingParser::Fields& fields);

  std::tm now_;
  fileStruct entry_;
};

/// True when the last date field is a time of day, "hh:mm".
[[nodiscard]] inline bool IsTimeOfDay(std::string_view timeOrYear) {
  return timeOrYear.size() > 2 && timeOrYear[2] == ':';
}

/// A decimal byte count; what follows the digits is ignored, no digits give 0.
[[nodiscard]] std::int64_t ParseSize(std::string_view digits);

/// 0 for "Jan" to 11 for "Dec"; everything else counts as January.
[[nodiscard]] int Month(std::string_view name);

/// The size column's text for a byte count, in three ranges. The kilobyte divides by 1,024, the
/// megabyte by 1,024,000, and the megabyte has two blanks before its unit: the column lines up on
/// it.
[[nodiscard]] std::string SizeText(std::int64_t bytes);

}  // namespace corvane
