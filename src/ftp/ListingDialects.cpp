#include "ftp/ListingDialects.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <optional>

namespace corvane {
namespace {

using Kind = RemoteEntry::Kind;

// Takes a token from the front of `line`, and the blank behind it.
std::string_view Token(std::string_view& line) {
  line.remove_prefix(std::min(line.find_first_not_of(' '), line.size()));
  const std::size_t end = std::min(line.find(' '), line.size());
  const std::string_view token = line.substr(0, end);
  line.remove_prefix(std::min(line.size(), end + 1));
  return token;
}

Kind KindOf(char letter) {
  switch (letter) {
    case '-': return Kind::File;
    case 'd': return Kind::Directory;
    case 'c': return Kind::Device;
    default: return Kind::Link;
  }
}

// A number of a date, kept to what a date can hold.
int Number(std::string_view digits) {
  int value = 0;
  std::from_chars(digits.data(), digits.data() + digits.size(), value);
  return std::clamp(value, 0, 9999);
}

std::optional<std::int64_t> Size(std::string_view digits) {
  std::int64_t value = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
  if (error != std::errc() || value < 0) return std::nullopt;
  return value;
}

// From 1 on; every word that is no month's counts as January.
unsigned Month(std::string_view name) {
  constexpr std::array<std::string_view, 12> kMonths = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                        "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
  const auto found = std::find(kMonths.begin(), kMonths.end(), name);
  return found == kMonths.end() ? 1 : static_cast<unsigned>(found - kMonths.begin()) + 1;
}

bool IsTimeOfDay(std::string_view timeOrYear) {
  return timeOrYear.size() > 2 && timeOrYear[2] == ':';
}

RemoteTime Moment(int year, unsigned month, int day, int minutes, RemoteTime::Precision precision) {
  using std::chrono::days;
  const std::chrono::sys_days first =
      std::chrono::year(year) / std::chrono::month(month) / std::chrono::day(1);
  const auto midnight = first + days(day - 1);
  return {std::chrono::sys_seconds(midnight).time_since_epoch().count() + minutes * 60LL,
          precision};
}

// A listing shows the time of day of what is recent, else the year.
RemoteTime UnixTime(std::string_view month, std::string_view day, std::string_view timeOrYear,
                    std::chrono::year_month_day now) {
  const unsigned number = Month(month);
  if (!IsTimeOfDay(timeOrYear))
    return Moment(Number(timeOrYear), number, Number(day), 0, RemoteTime::Precision::Day);
  const int minutes = Number(timeOrYear.substr(0, 2)) * 60 + Number(timeOrYear.substr(3));
  const int year = static_cast<int>(now.year()) - (number > static_cast<unsigned>(now.month()));
  return Moment(year, number, Number(day), minutes, RemoteTime::Precision::Minute);
}

void TakeLinkTarget(RemoteEntry& entry) {
  constexpr std::string_view kArrow = " -> ";
  const std::size_t arrow = entry.name.find(kArrow);
  if (arrow == std::string::npos || arrow == 0) return;
  entry.linkTarget = entry.name.substr(arrow + kArrow.size());
  entry.name.resize(arrow);
}

// "02:35PM" as minutes after midnight.
int DosMinutes(std::string_view time) {
  const std::size_t colon = std::min(time.find(':'), time.size());
  int hours = Number(time.substr(0, colon));
  const int minutes = colon < time.size() ? Number(time.substr(colon + 1)) : 0;
  if (time.ends_with("PM") || time.ends_with("pm")) hours = hours % 12 + 12;
  if (time.ends_with("AM") || time.ends_with("am")) hours %= 12;
  return hours * 60 + minutes;
}

// "07-17-00" or "07-17-2000".
std::optional<RemoteTime> DosTime(std::string_view date, std::string_view time) {
  const bool digits =
      std::ranges::all_of(date, [](char c) { return (c >= '0' && c <= '9') || c == '-'; });
  if (date.size() < 8 || !digits || date[2] != '-' || date[5] != '-') return std::nullopt;
  constexpr int kCentury = 70;
  int year = Number(date.substr(6));
  if (date.size() == 8) year += year < kCentury ? 2000 : 1900;
  const int month = std::clamp(Number(date.substr(0, 2)), 1, 12);
  return Moment(year, static_cast<unsigned>(month), Number(date.substr(3, 2)), DosMinutes(time),
                RemoteTime::Precision::Minute);
}

}  // namespace

bool ReadUnixLine(std::string_view line, std::chrono::year_month_day now, RemoteEntry& entry) {
  const std::string_view mode = Token(line);
  (void)Token(line);  // the link count
  const std::string_view owner = Token(line);
  const std::string_view group = Token(line);
  std::string_view size = Token(line);
  if (size.ends_with(',')) size = Token(line);  // a device has two numbers
  const std::string_view month = Token(line);
  const std::string_view day = Token(line);
  const std::string_view timeOrYear = Token(line);
  std::string_view name = line;
  if (mode.empty() || name.empty()) return false;
  // A year is printed one character narrower than a time, so a year's line may carry one more
  // blank before the name.
  if (!IsTimeOfDay(timeOrYear) && name.starts_with(' ')) name.remove_prefix(1);
  if (name.empty()) return false;
  entry.kind = KindOf(mode.front());
  entry.mode = mode;
  entry.owner = owner;
  entry.group = group;
  entry.size = entry.kind == Kind::File ? Size(size) : std::nullopt;
  entry.modified = UnixTime(month, day, timeOrYear, now);
  entry.name = name;
  entry.linkTarget.clear();
  if (entry.kind == Kind::Link) TakeLinkTarget(entry);
  return true;
}

bool ReadDosLine(std::string_view line, RemoteEntry& entry) {
  const std::string_view date = Token(line);
  const std::string_view time = Token(line);
  const std::string_view size = Token(line);
  const auto modified = DosTime(date, time);
  if (!modified || size.empty()) return false;
  entry = {};
  entry.modified = modified;
  if (size.starts_with('<')) {
    entry.kind = size == "<DIR>" ? Kind::Directory : Kind::Link;
    line.remove_prefix(std::min(line.find_first_not_of(' '), line.size()));
  } else {
    entry.size = Size(size);
    if (!entry.size) return false;
  }
  if (line.empty()) return false;
  entry.name = line;
  return true;
}

}  // namespace corvane
