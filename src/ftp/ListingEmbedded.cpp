#include "ftp/ListingEmbedded.h"

#include "ftp/ListingMonths.h"
#include "ftp/ListingTimes.h"
#include "ftp/ListingWords.h"

namespace corvane {
namespace {

using Kind = RemoteEntry::Kind;
using Precision = RemoteTime::Precision;

// "JAN-02-1999".
bool TakeMonthDayYear(std::string_view text, std::optional<std::chrono::year_month_day>& day) {
  const std::size_t one = text.find('-');
  if (one == std::string_view::npos || text.size() != one + 8 || text[one + 3] != '-') return false;
  const unsigned month = MonthOf(text.substr(0, one));
  const int number = NumberOf(text.substr(one + 1, 2));
  const int year = NumberOf(text.substr(one + 4));
  if (month == 0 || number < 1 || year < 0) return false;
  day = DayOf(year, month, number);
  return true;
}

bool ReadVxWorks(std::string_view line, RemoteEntry& entry) {
  constexpr std::string_view kSign = "<DIR>";
  const std::string_view size = TakeWord(line);
  std::optional<std::chrono::year_month_day> day;
  if (!AreDigits(size) || !TakeMonthDayYear(TakeWord(line), day)) return false;
  const auto clock = ClockOf(TakeWord(line));
  if (!clock) return false;
  SkipBlanks(line);
  entry = {};
  entry.modified = Moment(day, clock->seconds, Precision::Second);
  if (const std::string_view all = WithoutBlanks(line); all.ends_with(kSign)) {
    line = WithoutBlanks(all.substr(0, all.size() - kSign.size()));
    entry.kind = Kind::Directory;
  } else {
    entry.size = SizeOf(size);
  }
  entry.name = line;
  return !line.empty();
}

bool ReadFlash(std::string_view line, RemoteEntry& entry) {
  constexpr std::size_t kColumns = 5;
  const Words words = WordsOf(line);
  if (words.count != kColumns || !AreDigits(words[1]) || !IsNumericDay(words[2])) return false;
  const auto clock = ClockOf(words[4]);
  if (!clock || !clock->toSeconds || IsDigit(words[3].front())) return false;
  entry = {};
  entry.name = words[0];
  entry.size = SizeOf(words[1]);
  entry.modified = Moment(NumericDay(words[2]), clock->seconds, Precision::Second);
  return true;
}

}  // namespace

bool ReadEmbeddedLine(ListingLine& line, RemoteEntry& entry) {
  return ReadVxWorks(line.text, entry) || ReadFlash(line.text, entry);
}

}  // namespace corvane
