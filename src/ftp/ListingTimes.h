#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <string_view>

#include "ftp/ListingWords.h"
#include "remote/RemoteEntry.h"

namespace corvane {

/// A day as a listing writes it, where it is one of the calendar.
[[nodiscard]] std::optional<std::chrono::year_month_day> DayOf(int year, unsigned month, int day);
/// The time of a day, nothing where there is no such day. `seconds` may be those of 24:00.
[[nodiscard]] std::optional<RemoteTime> Moment(std::optional<std::chrono::year_month_day> day,
                                               int seconds, RemoteTime::Precision precision);
/// The year that a day without one belongs to: the last one that is not after today, where a month
/// counts as begun, and so do a few days to come, for the server's clock may be ahead.
[[nodiscard]] std::optional<std::chrono::year_month_day> LastDay(unsigned month, int day,
                                                                 std::chrono::year_month_day now);

/// A time of day: "H:MM", "HH:MM:SS.fraction", with "AM", "PM", "a" or "p" behind; seconds after
/// midnight.
struct ClockTime {
  int seconds = 0;
  bool toSeconds = false;  ///< seconds are told
};
[[nodiscard]] std::optional<ClockTime> ClockOf(std::string_view text);

/// "2000-07-17", "07-17-00", "17.07.2000", "17/07/00": with a year in front; where a full stop
/// parts them or the first number can be no month, the day first; else the month.
[[nodiscard]] std::optional<std::chrono::year_month_day> NumericDay(std::string_view text);
/// Whether that is of such a form, be it a day of the calendar or not.
[[nodiscard]] bool IsNumericDay(std::string_view text);

/// A date and time in the words of a line.
struct WordyTime {
  std::size_t words = 0;  ///< how many it takes
  std::optional<RemoteTime> time{};
  bool known = true;     ///< its month is one that is known
  bool isOlder = false;  ///< the word for the time of day is left empty
};
/// Reads what begins with the word `at`: month and day in either order and the year or the time of
/// day; or in numbers.
[[nodiscard]] std::optional<WordyTime> TimeAt(std::string_view line, const Words& words,
                                              std::size_t at, std::chrono::year_month_day now);

}  // namespace corvane
