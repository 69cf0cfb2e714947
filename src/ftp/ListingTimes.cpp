#include "ftp/ListingTimes.h"

#include <array>

#include "ftp/ListingMonths.h"

namespace corvane {
namespace {

using namespace std::chrono;
using Precision = RemoteTime::Precision;

constexpr int kDay = 24 * 60 * 60;
constexpr int kNoon = kDay / 2;

constexpr Precision PrecisionOf(const ClockTime& clock) {
  return clock.toSeconds ? Precision::Second : Precision::Minute;
}

// A day of the month, which may have a sign behind it.
int DayNumber(std::string_view word) {
  const std::size_t digits = word.size() > 1 && IsDigit(word[1]) ? 2 : 1;
  const int day = NumberOf(word.substr(0, digits));
  const std::string_view sign = word.substr(std::min(digits, word.size()));
  const bool mayStand = sign.empty() || sign == "." || sign == "," ||
                        (sign.size() <= 3 && static_cast<unsigned char>(sign[0]) >= 0x80);
  return mayStand && day >= 1 && day <= 31 ? day : 0;
}

int YearNumber(std::string_view word) {
  if (word.size() > 4 && static_cast<unsigned char>(word[4]) >= 0x80) word = word.substr(0, 4);
  return word.size() == 4 ? NumberOf(word) : -1;
}

struct DayParts {
  std::array<int, 3> numbers{};
  std::array<std::size_t, 3> widths{};
  char separator = 0;
};

std::optional<DayParts> PartsOfDay(std::string_view text) {
  if (text.size() < 6 || text.size() > 10) return std::nullopt;
  DayParts parts;
  for (std::size_t i = 0; i < 3; ++i) {
    std::size_t width = 0;
    while (width < text.size() && IsDigit(text[width])) ++width;
    parts.numbers[i] = NumberOf(text.substr(0, width));
    parts.widths[i] = width;
    text.remove_prefix(width);
    if (width == 0 || width > 4 || width == 3) return std::nullopt;
    if (i == 2) break;
    if (text.empty() || std::string_view("-/.").find(text.front()) == std::string_view::npos)
      return std::nullopt;
    if (i == 1 && text.front() != parts.separator) return std::nullopt;
    parts.separator = text.front();
    text.remove_prefix(1);
  }
  const bool narrow = parts.widths[1] <= 2 && (parts.widths[0] <= 2 || parts.widths[2] <= 2);
  return text.empty() && narrow ? std::optional(parts) : std::nullopt;
}

// "01-31 10:00", as what is recent is written beside "2000-01-31".
std::optional<year_month_day> ShortDay(std::string_view text, year_month_day now) {
  if (text.size() != 5 || text[2] != '-') return std::nullopt;
  const int month = NumberOf(text.substr(0, 2));
  const int day = NumberOf(text.substr(3));
  return month >= 1 && month <= 12 && day >= 1 && day <= 31
             ? LastDay(static_cast<unsigned>(month), day, now)
             : std::nullopt;
}

bool IsZone(std::string_view text) {
  return text.size() >= 5 && text.size() <= 6 && (text[0] == '+' || text[0] == '-') &&
         IsDigit(text[1]) && IsDigit(text[2]) && IsDigit(text[text.size() - 2]) &&
         IsDigit(text.back());
}

// In seconds; of "+0100" and "+01:00".
int ZoneOf(std::string_view text) {
  const int hours = NumberOf(text.substr(1, 2));
  const int minutes = NumberOf(text.substr(text.size() - 2));
  return (text[0] == '-' ? -1 : 1) * (hours * 60 + minutes) * 60;
}

// How many blanks stand before a word.
std::size_t BlanksBefore(std::string_view line, std::string_view word) {
  const char* at = word.data();
  while (at > line.data() && IsBlank(at[-1])) --at;
  return static_cast<std::size_t>(word.data() - at);
}

// "2000-01-31 10:00", "2000-01-31 10:00:00.000000000 +0100", or the day alone with a blank for what
// is left out.
std::optional<WordyTime> NumericAt(std::string_view line, const Words& words, std::size_t at,
                                   year_month_day now) {
  const std::string_view word = words[at];
  const std::string_view next = words[at + 1];
  const auto clock = ClockOf(next);
  const bool isLong = IsNumericDay(word);
  if (!isLong && !ShortDay(word, now)) return std::nullopt;
  const bool apart = BlanksBefore(line, next) > 1;
  const auto day = isLong ? NumericDay(word) : ShortDay(word, now);
  if (!clock || (isLong && apart)) {
    if (!isLong) return std::nullopt;
    return WordyTime{.words = 1, .time = Moment(day, 0, Precision::Day), .isOlder = true};
  }
  WordyTime found{.words = 2, .time = Moment(day, clock->seconds, PrecisionOf(*clock))};
  if (next.find('.') == std::string_view::npos || !IsZone(words[at + 2])) return found;
  found.words = 3;
  if (found.time) {
    found.time->seconds -= ZoneOf(words[at + 2]);
    found.time->utc = true;
  }
  return found;
}

bool IsWeekday(std::string_view word) {
  constexpr std::array<std::string_view, 7> kDays = {"mon", "tue", "wed", "thu",
                                                     "fri", "sat", "sun"};
  return word.size() == 3 && std::ranges::any_of(kDays, [word](auto day) { return Is(word, day); });
}

}  // namespace

std::optional<year_month_day> DayOf(int year, unsigned month, int day) {
  const year_month_day made = std::chrono::year(year) / std::chrono::month(month) / day;
  return made.ok() && year >= 0 ? std::optional(made) : std::nullopt;
}

std::optional<RemoteTime> Moment(std::optional<year_month_day> day, int seconds,
                                 Precision precision) {
  if (!day) return std::nullopt;
  return RemoteTime{sys_seconds(sys_days(*day)).time_since_epoch().count() + seconds, precision};
}

// A year back and forth: what was changed on the 29th of February may be eight years old.
std::optional<year_month_day> LastDay(unsigned month, int day, year_month_day now) {
  constexpr days kAhead(7);
  constexpr int kMostYears = 8;
  const sys_days last = sys_days(now) + kAhead;
  const int thisYear = static_cast<int>(now.year());
  for (int year = thisYear + 1; year >= thisYear - kMostYears; --year) {
    const auto found = DayOf(year, month, day);
    if (!found) continue;
    if (sys_days(*found) <= last || (year == thisYear && found->month() == now.month()))
      return found;
  }
  return std::nullopt;
}

std::optional<ClockTime> ClockOf(std::string_view text) {
  const std::size_t hourDigits = text.size() > 1 && text[1] == ':' ? 1 : 2;
  if (text.size() < hourDigits + 3 || text[hourDigits] != ':') return std::nullopt;
  int hour = NumberOf(text.substr(0, hourDigits));
  const int minute = NumberOf(text.substr(hourDigits + 1, 2));
  text.remove_prefix(hourDigits + 3);
  int second = 0;
  const bool toSeconds = text.size() >= 3 && text.front() == ':';
  if (toSeconds) {
    second = NumberOf(text.substr(1, 2));
    text.remove_prefix(3);
    if (text.size() > 1 && text.front() == '.') {
      text.remove_prefix(1);
      while (!text.empty() && IsDigit(text.front())) text.remove_prefix(1);
    }
  }
  if (hour < 0 || minute < 0 || minute > 59 || second < 0 || second > 60) return std::nullopt;
  const bool isHalf = Is(text, "am") || Is(text, "pm") || Is(text, "a") || Is(text, "p");
  if (!isHalf && !text.empty()) return std::nullopt;
  if (isHalf && (hour < 1 || hour > 12)) return std::nullopt;
  if (isHalf) hour = hour % 12;
  int seconds = (hour * 60 + minute) * 60 + second;
  if (isHalf && Lower(text.front()) == 'p') seconds += kNoon;
  return seconds <= kDay ? std::optional(ClockTime{seconds, toSeconds}) : std::nullopt;
}

bool IsNumericDay(std::string_view text) {
  return PartsOfDay(text).has_value();
}

std::optional<year_month_day> NumericDay(std::string_view text) {
  constexpr int kCentury = 70;
  const auto parts = PartsOfDay(text);
  if (!parts) return std::nullopt;
  const auto [a, b, c] = parts->numbers;
  if (parts->widths[0] == 4 || a > 31)
    return DayOf(a + (parts->widths[0] == 4 ? 0 : 1900), static_cast<unsigned>(b), c);
  const int year = parts->widths[2] == 4 ? c : c + (c < kCentury ? 2000 : 1900);
  const bool dayFirst = parts->separator == '.' || a > 12;
  return dayFirst ? DayOf(year, static_cast<unsigned>(b), a)
                  : DayOf(year, static_cast<unsigned>(a), b);
}

std::optional<WordyTime> TimeAt(std::string_view line, const Words& words, std::size_t at,
                                year_month_day now) {
  const std::size_t weekday = IsWeekday(words[at]) ? 1 : 0;
  const std::string_view one = words[at + weekday];
  const std::string_view two = words[at + weekday + 1];
  const std::string_view three = words[at + weekday + 2];
  if (one.empty()) return std::nullopt;
  if (weekday == 0 && IsDigit(one.front())) {
    if (auto numeric = NumericAt(line, words, at, now)) return numeric;
  }
  if (two.empty() || three.empty()) return std::nullopt;
  unsigned month = MonthOf(one);
  int day = month != 0 ? DayNumber(two) : 0;
  if (day == 0 && (month = MonthOf(two)) != 0) day = DayNumber(one);
  WordyTime found{.words = weekday + 3};
  if (day == 0) {
    // What is no month's name counts as the first one, where only that can have been meant.
    day = IsDigit(one.front()) ? 0 : DayNumber(two);
    month = 1;
    found.known = false;
  }
  if (day == 0) return std::nullopt;
  if (const int year = YearNumber(three); year >= 0) {
    found.time = Moment(DayOf(year, month, day), 0, Precision::Day);
    return found;
  }
  const auto clock = ClockOf(three);
  if (!clock) return std::nullopt;
  // A year behind the time of day, unless it is the name.
  const bool more = clock->toSeconds && !words[at + weekday + 4].empty();
  const int year = more ? YearNumber(words[at + weekday + 3]) : -1;
  if (year >= 0) ++found.words;
  found.time = Moment(year >= 0 ? DayOf(year, month, day) : LastDay(month, day, now),
                      clock->seconds, PrecisionOf(*clock));
  return found;
}

}  // namespace corvane
