#include "ftp/ListingFacts.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <cstdio>

#include "ftp/ListingWords.h"

namespace corvane {
namespace {

using Kind = RemoteEntry::Kind;

// The facts of one line that are of use.
struct Facts {
  std::string_view type;
  std::string_view size;
  std::string_view modify;
  std::string_view mode;
  std::string_view owner;
  std::string_view group;
};

// Numbers count as owner and group only where no names are told.
void Take(std::string_view fact, std::string_view value, Facts& facts) {
  const auto unlessTold = [value](std::string_view& told) {
    if (told.empty()) told = value;
  };
  if (Is(fact, "type")) facts.type = value;
  if (Is(fact, "size")) facts.size = value;
  if (Is(fact, "modify")) facts.modify = value;
  if (!Begins(fact, "unix.")) return;
  fact.remove_prefix(5);
  if (Is(fact, "mode")) facts.mode = value;
  if (Is(fact, "ownername")) facts.owner = value;
  if (Is(fact, "groupname")) facts.group = value;
  if (Is(fact, "owner") || Is(fact, "uid")) unlessTold(facts.owner);
  if (Is(fact, "group") || Is(fact, "gid")) unlessTold(facts.group);
}

void TakeFact(std::string_view fact, Facts& facts) {
  const std::size_t equals = fact.find('=');
  if (equals != std::string_view::npos)
    Take(fact.substr(0, equals), fact.substr(equals + 1), facts);
}

// Takes the facts from the front of the line, and the blank behind them; what is left is the name.
// A value may hold blanks, and a name may look like a fact. Some servers leave the last ";" out.
bool TakeFacts(std::string_view& line, Facts& facts) {
  while (!line.starts_with(' ')) {
    std::size_t end = line.find(';');
    const bool last = end == std::string_view::npos;
    if (last) end = line.find(' ');
    if (end == std::string_view::npos) return false;
    TakeFact(line.substr(0, end), facts);
    line.remove_prefix(last ? end : end + 1);
  }
  line.remove_prefix(1);
  return !line.empty();
}

// Takes the kind, and for a link where it leads.
void TakeType(std::string_view type, RemoteEntry& entry) {
  constexpr std::string_view kUnix = "os.unix=";
  entry.kind = Kind::Link;
  if (Is(type, "file")) entry.kind = Kind::File;
  if (Is(type, "dir")) entry.kind = Kind::Directory;
  if (!Begins(type, kUnix)) return;
  type.remove_prefix(kUnix.size());
  if (Begins(type, "chr")) entry.kind = Kind::Device;
  if (!Begins(type, "slink") && !Begins(type, "symlink")) return;
  entry.mode = "l";
  const std::size_t colon = type.find(':');
  if (colon != std::string_view::npos) entry.linkTarget = type.substr(colon + 1);
}

// "0644", "644" or "0o644" as a listing in the long format writes it; nothing where it is no
// number.
std::string ModeOf(std::string_view octal, char letter) {
  constexpr std::string_view kLetters = "rwxrwxrwx";
  if (octal.starts_with("0o")) octal.remove_prefix(2);
  unsigned bits = 0;
  const auto [end, error] = std::from_chars(octal.data(), octal.data() + octal.size(), bits, 8);
  if (error != std::errc() || end != octal.data() + octal.size()) return {};
  std::string mode(1 + kLetters.size(), letter);
  for (std::size_t i = 0; i < kLetters.size(); ++i)
    mode[1 + i] = (bits >> (kLetters.size() - 1 - i) & 1U) != 0 ? kLetters[i] : '-';
  return mode;
}

char LetterOf(const RemoteEntry& entry) {
  switch (entry.kind) {
    case Kind::File: return '-';
    case Kind::Directory: return 'd';
    case Kind::Device: return 'c';
    case Kind::Link: break;
  }
  return entry.mode.empty() ? '?' : 'l';
}

}  // namespace

bool ReadFactsLine(std::string_view line, RemoteEntry& entry) {
  Facts facts;
  if (!TakeFacts(line, facts)) return false;
  entry.mode.clear();
  entry.unclear = false;
  entry.linkTarget.clear();
  TakeType(facts.type, entry);
  if (!facts.mode.empty()) entry.mode = ModeOf(facts.mode, LetterOf(entry));
  entry.owner = facts.owner;
  entry.group = facts.group;
  entry.modified = ReadTimeVal(facts.modify);
  entry.size.reset();
  if (entry.kind == Kind::File) {
    std::int64_t size = -1;
    std::from_chars(facts.size.data(), facts.size.data() + facts.size.size(), size);
    if (size >= 0) entry.size = size;
  }
  entry.name = Is(facts.type, "cdir") ? "." : Is(facts.type, "pdir") ? ".." : line;
  return true;
}

std::optional<RemoteTime> ReadTimeVal(std::string_view text) {
  using namespace std::chrono;
  constexpr std::array<std::size_t, 6> kDigits = {4, 2, 2, 2, 2, 2};
  std::array<int, 6> parts{};
  for (std::size_t i = 0; i < parts.size(); ++i) {
    if (text.size() < kDigits[i]) return std::nullopt;
    for (const char c : text.substr(0, kDigits[i])) {
      if (c < '0' || c > '9') return std::nullopt;
      parts[i] = parts[i] * 10 + (c - '0');
    }
    text.remove_prefix(kDigits[i]);
  }
  const year_month_day day = year{parts[0]} / parts[1] / parts[2];
  if (!day.ok() || parts[3] > 23 || parts[4] > 59 || parts[5] > 60) return std::nullopt;
  const sys_seconds moment =
      sys_days(day) + hours(parts[3]) + minutes(parts[4]) + seconds(parts[5]);
  return RemoteTime{moment.time_since_epoch().count(), RemoteTime::Precision::Second, true};
}

std::optional<std::string> WriteTimeVal(std::int64_t seconds) {
  using namespace std::chrono;
  constexpr std::int64_t kFirst = -62'167'219'200;  // 0000-01-01
  constexpr std::int64_t kLast = 253'402'300'799;   // 9999-12-31 23:59:59
  if (seconds < kFirst || seconds > kLast) return std::nullopt;
  const sys_seconds moment{std::chrono::seconds(seconds)};
  const sys_days midnight = floor<days>(moment);
  const year_month_day day = midnight;
  const hh_mm_ss time(moment - midnight);
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%04d%02u%02u%02d%02d%02d", static_cast<int>(day.year()),
                static_cast<unsigned>(day.month()), static_cast<unsigned>(day.day()),
                static_cast<int>(time.hours().count()), static_cast<int>(time.minutes().count()),
                static_cast<int>(time.seconds().count()));
  return text.data();
}

}  // namespace corvane
