#include "ftp/ListingUnix.h"

#include <optional>

#include "ftp/ListingMonths.h"
#include "ftp/ListingTimes.h"
#include "ftp/ListingWords.h"

namespace corvane {
namespace {

using Kind = RemoteEntry::Kind;
using Precision = RemoteTime::Precision;

constexpr std::size_t kRights = 9;

Kind KindOf(char letter) {
  switch (letter) {
    case '-': return Kind::File;
    case 'd': return Kind::Directory;
    case 'c': return Kind::Device;
    default: return Kind::Link;
  }
}

/// The word that a line begins with: "drwxr-xr-x", perhaps with a sign and the link count behind.
struct Mode {
  std::string_view text{};
  std::string_view links{};
};

std::optional<Mode> ModeIn(std::string_view word) {
  constexpr std::string_view kTypes = "-dlcbpsDPnwmM?";
  constexpr std::string_view kLetters = "rwx-sStTlLKk?*";
  constexpr std::string_view kSigns = "+.@-";
  constexpr std::size_t kLeast = 3;
  if (word.size() < kLeast || kTypes.find(word.front()) == std::string_view::npos)
    return std::nullopt;
  std::size_t end = 1;
  while (end < word.size() && end <= kRights && kLetters.find(word[end]) != std::string_view::npos)
    ++end;
  if (end > kRights && end < word.size() && kSigns.find(word[end]) != std::string_view::npos) ++end;
  const Mode mode{word.substr(0, end), word.substr(end)};
  const bool whole = mode.links.empty() || (end > kRights && AreDigits(mode.links));
  return whole ? std::optional(mode) : std::nullopt;
}

std::size_t BlanksBefore(std::string_view line, std::string_view word) {
  const char* at = word.data();
  while (at > line.data() && IsBlank(at[-1])) --at;
  return static_cast<std::size_t>(word.data() - at);
}

// One blank parts the name from the date. Where years stand to the left of the five places that a
// time of day takes, one more fills the last.
std::string_view NameBehind(std::string_view line, std::string_view last, bool older = false) {
  constexpr std::size_t kPlaces = 5;
  std::string_view name = Behind(line, last);
  if (!name.empty()) name.remove_prefix(1);
  const bool toTheLeft = last.size() < kPlaces && BlanksBefore(line, last) == 1;
  if (name.starts_with(' ') && (toTheLeft || older)) name.remove_prefix(1);
  return name;
}

// The name ends where the arrow begins. Of several arrows it is the one behind which stand as many
// bytes as the link is long.
void TakeLinkTarget(std::string_view size, RemoteEntry& entry) {
  constexpr std::string_view kArrow = " -> ";
  const std::size_t first = entry.name.find(kArrow);
  if (first == std::string::npos) return;
  std::size_t arrow = first;
  if (entry.name.find(kArrow, first + 1) != std::string::npos) {
    const auto length = SizeOf(size);
    const std::size_t behind = length ? static_cast<std::size_t>(*length) + kArrow.size() : 0;
    arrow = entry.name.size() - std::min(behind, entry.name.size());
    entry.unclear = entry.name.compare(arrow, kArrow.size(), kArrow) != 0;
  }
  if (arrow == 0 || entry.unclear) return;
  entry.linkTarget = entry.name.substr(arrow + kArrow.size());
  entry.name.resize(arrow);
}

// What is in force for every line, whatever its columns.
bool Fill(std::string_view mode, std::string_view size, std::optional<RemoteTime> time,
          std::string_view name, RemoteEntry& entry) {
  if (name.empty()) return false;
  entry.kind = KindOf(mode.front());
  entry.mode = mode;
  entry.size = entry.kind == Kind::File ? SizeOf(size) : std::nullopt;
  entry.modified = time;
  entry.name = name;
  entry.linkTarget.clear();
  entry.unclear = false;
  if (mode.front() == 'l') TakeLinkTarget(size, entry);
  return true;
}

// By far the most frequent form, in the columns that it has everywhere.
bool ReadCommon(const ListingLine& line, RemoteEntry& entry) {
  std::string_view rest = line.text;
  const std::string_view mode = TakeWord(rest);
  if (mode.size() < kRights + 1 || IsBlank(line.text.front())) return false;
  if (!AreDigits(TakeWord(rest))) return false;
  const std::string_view owner = TakeWord(rest);
  const std::string_view group = TakeWord(rest);
  const std::string_view size = TakeWord(rest);
  if (!AreDigits(size)) return false;
  const unsigned month = MonthOf(TakeWord(rest));
  const int day = month != 0 ? NumberOf(TakeWord(rest)) : -1;
  if (day < 1 || day > 31) return false;
  const std::string_view when = TakeWord(rest);
  std::optional<RemoteTime> time;
  if (const int year = when.size() == 4 ? NumberOf(when) : -1; year >= 0) {
    time = Moment(DayOf(year, month, day), 0, Precision::Day);
  } else if (const auto clock = ClockOf(when); clock && !clock->toSeconds) {
    time = Moment(LastDay(month, day, line.now), clock->seconds, Precision::Minute);
  } else {
    return false;
  }
  const auto known = ModeIn(mode);
  if (!known || !known->links.empty()) return false;
  entry.owner = owner;
  entry.group = group;
  return Fill(mode, size, time, NameBehind(line.text, when), entry);
}

struct Found {
  std::size_t at = 0;
  WordyTime time{};
};

// Where the date stands. The usual place comes first, for owners may be called as months are; then
// the first date that follows a number; then the first one at all.
std::optional<Found> FindTime(std::string_view line, const Words& words, std::size_t first,
                              std::chrono::year_month_day now) {
  constexpr std::size_t kUsual = 4;
  const std::size_t usual = first + kUsual;
  if (AreDigits(words[first]) && IsSize(words[usual - 1])) {
    if (const auto time = TimeAt(line, words, usual, now)) return Found{usual, *time};
  }
  std::optional<Found> fallback;
  for (std::size_t at = first; at < words.count; ++at) {
    const auto time = TimeAt(line, words, at, now);
    if (!time) continue;
    if (time->known && at > first && IsDigit(words[at - 1].back())) return Found{at, *time};
    if (!fallback && (time->known || (at > first && IsSize(words[at - 1]))))
      fallback = Found{at, *time};
  }
  return fallback;
}

// Columns that hold blanks cannot be told apart, and stand together as the owner.
void TakeOwners(std::string_view line, const Words& words, std::size_t first, std::size_t end,
                bool hasLinks, RemoteEntry& entry) {
  entry.owner.clear();
  entry.group.clear();
  if (!hasLinks && first < end && AreDigits(words[first])) ++first;
  const auto isContext = [](std::string_view word) {
    return std::ranges::count(word, ':') >= 2;  // SELinux
  };
  if (first < end && isContext(words[end - 1])) --end;
  if (first >= end) return;
  if (end - first <= 2) {
    entry.owner = words[first];
    if (end - first == 2) entry.group = words[first + 1];
    return;
  }
  const auto begin = static_cast<std::size_t>(words[first].data() - line.data());
  const std::string_view last = words[end - 1];
  entry.owner =
      line.substr(begin, static_cast<std::size_t>(last.data() - line.data()) + last.size() - begin);
}

// Routers and switches tell the day, the year and the time, and perhaps the zone.
std::size_t WordsMore(const Words& words, std::size_t next, std::string_view mode,
                      std::optional<RemoteTime>& time) {
  constexpr std::size_t kShort = 5;
  const auto clock = ClockOf(words[next]);
  if (mode.size() > kShort || !clock || !clock->toSeconds || !time ||
      time->precision != Precision::Day)
    return 0;
  time->seconds += clock->seconds;
  time->precision = Precision::Second;
  const std::string_view zone = words[next + 1];
  return zone.size() == 6 && (zone[0] == '+' || zone[0] == '-') && zone[3] == ':' ? 2 : 1;
}

// The place of the mode: inode and blocks may stand before it.
std::size_t ModeAt(const Words& words) {
  std::size_t at = 0;
  while (at < 2 && IsSize(words[at])) ++at;
  return at;
}

}  // namespace

bool ReadUnixLine(ListingLine& line, RemoteEntry& entry) {
  if (ReadCommon(line, entry)) return true;
  const char begin = line.text.front();
  if (begin != ' ' && !IsDigit(begin) && !ModeIn(line.text.substr(0, line.text.find(' '))))
    return false;
  const Words words = WordsOf(line.text);
  std::size_t first = ModeAt(words);
  const auto mode = ModeIn(words[first]);
  if (!mode) return false;
  ++first;
  const std::string_view sign = words[first];
  if (sign == "+" || sign == "." || sign == "@" || sign == "-") ++first;
  auto found = FindTime(line.text, words, first, line.now);
  if (!found) return false;
  const std::size_t at = found->at;
  std::size_t next = at + found->time.words;
  const std::size_t more = WordsMore(words, next, mode->text, found->time.time);
  next += more;
  if (next > words.count) return false;
  std::size_t end = at;  // of the owners
  std::string_view size;
  if (at > first && IsSize(words[at - 1])) size = words[--end];
  // A device has two numbers, which a comma parts.
  if (end > first && end < at && words[end - 1].ends_with(',')) --end;
  TakeOwners(line.text, words, first, end, !mode->links.empty(), entry);
  std::string_view name = NameBehind(line.text, words[next - 1], found->time.isOlder);
  if (more > 0) SkipBlanks(name);
  return Fill(mode->text, size, found->time.time, name, entry);
}

bool ReadUnclearLine(ListingLine& line, RemoteEntry& entry) {
  constexpr std::size_t kColumns = 4;
  const Words words = WordsOf(line.text);
  const std::size_t at = ModeAt(words);
  const auto mode = ModeIn(words[at]);
  if (!mode || mode->text.size() <= kRights || words.count < at + 1 + kColumns) return false;
  if (FindTime(line.text, words, at + 1, line.now)) return false;  // and no name behind it
  entry = {};
  std::string_view name = Behind(line.text, words[at]);
  SkipBlanks(name);
  entry.name = name;
  entry.kind = Kind::Link;
  entry.mode = mode->text;
  entry.unclear = true;
  return true;
}

}  // namespace corvane
