#include "ftp/ListingVms.h"

#include <optional>

#include "ftp/ListingMonths.h"
#include "ftp/ListingTimes.h"
#include "ftp/ListingWords.h"

namespace corvane {
namespace {

using Kind = RemoteEntry::Kind;
using Precision = RemoteTime::Precision;

// "15-JAN-2001".
std::optional<std::chrono::year_month_day> NamedDay(std::string_view text) {
  const std::size_t one = text.find('-');
  const std::size_t two = one == std::string_view::npos ? one : text.find('-', one + 1);
  if (two == std::string_view::npos) return std::nullopt;
  const unsigned month = MonthOf(text.substr(one + 1, two - one - 1));
  const int year = NumberOf(text.substr(two + 1));
  if (month == 0 || year < 0) return std::nullopt;
  return DayOf(year, month, NumberOf(text.substr(0, one)));
}

// "NAME.TXT;4", the name of which may hold blanks behind a "^".
std::string_view TakeName(std::string_view& line) {
  constexpr std::size_t kMostDigits = 5;
  std::size_t end = 0;
  while (end < line.size() && (!IsBlank(line[end]) || (end > 0 && line[end - 1] == '^'))) ++end;
  const std::string_view name = line.substr(0, end);
  const std::size_t version = name.rfind(';');
  if (version == std::string_view::npos || version == 0) return {};
  const std::string_view digits = name.substr(version + 1);
  if (!AreDigits(digits) || digits.size() > kMostDigits) return {};
  line.remove_prefix(end);
  return name;
}

// Size, date, owner and protection. False where there is no date.
bool TakeFacts(std::string_view rest, RemoteEntry& entry) {
  const Words words = WordsOf(rest);
  for (std::size_t i = 0; i < words.count; ++i) {
    const std::string_view word = words[i];
    if (const auto day = NamedDay(word)) {
      const auto clock = ClockOf(words[i + 1]);
      entry.modified = clock ? Moment(day, clock->seconds,
                                      clock->toSeconds ? Precision::Second : Precision::Minute)
                             : Moment(day, 0, Precision::Day);
    } else if (word.starts_with('[') && word.ends_with(']')) {
      const std::string_view inside = word.substr(1, word.size() - 2);
      const std::size_t comma = inside.find(',');
      entry.owner = comma == std::string_view::npos ? inside : inside.substr(comma + 1);
      if (comma != std::string_view::npos) entry.group = inside.substr(0, comma);
    } else if (word.starts_with('(') && word.ends_with(')')) {
      entry.mode = word;
    }
  }
  return entry.modified.has_value();
}

}  // namespace

bool ReadVmsLine(ListingLine& line, RemoteEntry& entry) {
  constexpr std::string_view kDirectory = ".dir;";
  std::string_view rest = line.text;
  if (IsBlank(rest.front())) return false;
  std::string_view name = TakeName(rest);
  if (name.empty()) return false;
  entry = {};
  const std::size_t dot = name.rfind('.');
  if (dot != std::string_view::npos && dot > 0 && Begins(name.substr(dot), kDirectory)) {
    entry.kind = Kind::Directory;
    name = name.substr(0, dot);
  }
  entry.name = name;
  SkipBlanks(rest);
  if (!rest.empty()) {
    // What may not be read is told by its name and the reason.
    return TakeFacts(rest, entry) || rest.starts_with('%') || Begins(rest, "no privilege");
  }
  const std::string_view next = line.following.substr(0, line.following.find('\n'));
  if (next.empty() || !IsBlank(next.front())) return true;
  line.takesNext = TakeFacts(next, entry);
  return true;
}

}  // namespace corvane
