#include "ftp/ListingDos.h"

#include "ftp/ListingTimes.h"
#include "ftp/ListingWords.h"

namespace corvane {
namespace {

using Kind = RemoteEntry::Kind;
using Precision = RemoteTime::Precision;

constexpr int kHour = 60 * 60;

// Takes "02:35PM", "02:35 PM" or "14:35".
std::optional<ClockTime> TakeClock(std::string_view& line) {
  const std::string_view word = TakeWord(line);
  auto clock = ClockOf(word);
  if (!clock || !IsDigit(word.back())) return clock;
  std::string_view rest = line;
  const std::string_view half = TakeWord(rest);
  const bool isHalf = Is(half, "am") || Is(half, "pm");
  constexpr int kNoon = 12;
  const int hour = clock->seconds / kHour;
  if (!isHalf || hour < 1 || hour > kNoon) return clock;
  line = rest;
  clock->seconds += ((hour % kNoon) - hour + (Lower(half[0]) == 'p' ? kNoon : 0)) * kHour;
  return clock;
}

bool TakeDayAndTime(std::string_view& line, std::optional<RemoteTime>& time) {
  const std::string_view date = TakeWord(line);
  if (!IsNumericDay(date)) return false;
  const auto clock = TakeClock(line);
  if (!clock) return false;
  time = Moment(NumericDay(date), clock->seconds,
                clock->toSeconds ? Precision::Second : Precision::Minute);
  return true;
}

// What is no file has a word in place of the size, and ten blanks up to where sizes end; who writes
// other columns leaves fewer.
std::string_view NameBehindWord(std::string_view rest) {
  constexpr std::size_t kMicrosoft = 10;
  const std::size_t blanks = std::min(rest.find_first_not_of(' '), rest.size());
  return rest.substr(std::min(blanks, kMicrosoft));
}

// "name [where it leads]"; brackets may belong to the name too.
void TakeTarget(RemoteEntry& entry) {
  constexpr std::string_view kOpen = " [";
  const std::size_t open = entry.name.find(kOpen);
  if (open == std::string::npos || open == 0 || !entry.name.ends_with(']')) return;
  entry.unclear = entry.name.find(kOpen, open + 1) != std::string::npos;
  if (entry.unclear) return;
  entry.linkTarget = entry.name.substr(open + kOpen.size());
  entry.linkTarget.pop_back();
  entry.name.resize(open);
}

}  // namespace

bool ReadDosLine(ListingLine& line, RemoteEntry& entry) {
  std::string_view rest = line.text;
  SkipBlanks(rest);
  if (rest.empty() || !IsDigit(rest.front())) return false;
  std::optional<RemoteTime> time;
  if (!TakeDayAndTime(rest, time)) return false;
  const std::string_view size = TakeWord(rest);
  if (size.empty() || rest.size() < 2) return false;
  entry = {};
  entry.modified = time;
  if (size.front() == '<' && size.back() == '>') {
    const bool directory = Is(size, "<dir>");
    entry.kind = directory ? Kind::Directory : Kind::Link;
    entry.name = NameBehindWord(rest);
    if (!directory) TakeTarget(entry);
  } else {
    entry.size = SizeOf(size);
    if (!entry.size) return false;
    entry.name = rest.substr(1);
  }
  return !entry.name.empty();
}

bool ReadOs2Line(ListingLine& line, RemoteEntry& entry) {
  std::string_view rest = line.text;
  const std::string_view size = TakeWord(rest);
  if (!AreDigits(size)) return false;
  bool directory = false;
  std::optional<RemoteTime> time;
  for (;;) {
    std::string_view behind = rest;
    const std::string_view word = TakeWord(behind);
    if (word.empty()) return false;
    if (IsDigit(word.front())) break;
    if (word.find_first_not_of("DIRASH") != std::string_view::npos) return false;
    directory = directory || word == "DIR";
    rest = behind;
  }
  if (!TakeDayAndTime(rest, time)) return false;
  entry = {};
  entry.kind = directory ? Kind::Directory : Kind::File;
  if (!directory) entry.size = SizeOf(size);
  entry.modified = time;
  constexpr std::size_t kApart = 2;
  const std::size_t blanks = std::min(rest.find_first_not_of(' '), rest.size());
  entry.name = rest.substr(std::min(blanks, kApart));
  return !entry.name.empty();
}

}  // namespace corvane
