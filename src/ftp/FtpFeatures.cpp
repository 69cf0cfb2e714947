#include "ftp/FtpFeatures.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <chrono>
#include <string>
#include <utility>

namespace corvane {
namespace {

std::string Lower(std::string_view text) {
  std::string lower(text);
  std::ranges::transform(lower, lower.begin(), [](unsigned char c) { return std::tolower(c); });
  return lower;
}

// Splits at `mark`; the first part, which `rest` loses.
std::string_view Cut(std::string_view& rest, char mark) {
  const std::size_t end = std::min(rest.find(mark), rest.size());
  const std::string_view part = rest.substr(0, end);
  rest.remove_prefix(std::min(end + 1, rest.size()));
  return part;
}

template <typename Number>
std::optional<Number> ReadNumber(std::string_view text) {
  const std::size_t begin = std::min(text.find_first_not_of(" \t"), text.size());
  Number number{};
  const auto [end, error] = std::from_chars(text.data() + begin, text.data() + text.size(), number);
  return error == std::errc() ? std::optional(number) : std::nullopt;
}

std::optional<RemoteEntry::Kind> KindOf(const std::string& type) {
  using Kind = RemoteEntry::Kind;
  if (type == "file") return Kind::File;
  if (type == "dir" || type == "cdir" || type == "pdir") return Kind::Directory;
  if (type.starts_with("os.unix=slink") || type.starts_with("os.unix=symlink")) return Kind::Link;
  return std::nullopt;
}

// "0644" or "644" as a listing writes it.
std::string ModeOf(std::string_view octal, RemoteEntry::Kind kind) {
  constexpr std::string_view kLetters = "rwxrwxrwx";
  unsigned bits = 0;
  const char* const last = octal.data() + octal.size();
  if (std::from_chars(octal.data(), last, bits, 8).ec != std::errc()) return {};
  using Kind = RemoteEntry::Kind;
  std::string mode(1, kind == Kind::Directory ? 'd' : kind == Kind::Link ? 'l' : '-');
  for (unsigned i = 0; i < kLetters.size(); ++i)
    mode += (bits >> (kLetters.size() - 1 - i) & 1U) != 0 ? kLetters[i] : '-';
  return mode;
}

// The numbers count as owner and group only where no names are told.
void TakeOwner(const std::string& fact, std::string_view value, RemoteEntry& entry) {
  if (fact == "unix.ownername" || (fact == "unix.owner" && entry.owner.empty()))
    entry.owner = value;
  if (fact == "unix.groupname" || (fact == "unix.group" && entry.group.empty()))
    entry.group = value;
}

}  // namespace

FtpFeatures ReadFeatures(std::string_view reply) {
  FtpFeatures features;
  while (!reply.empty()) {
    std::string line = Lower(Cut(reply, '\n'));
    if (!line.starts_with(' ')) continue;
    line.erase(0, line.find_first_not_of(' '));
    features.facts = features.facts || line.starts_with("mlst");
    features.copy = features.copy || line.starts_with("site copy");
    features.room = features.room || line.starts_with("avbl");
  }
  return features;
}

bool ReadFacts(std::string_view reply, RemoteEntry& entry) {
  std::optional<RemoteEntry::Kind> kind;
  std::string_view octal;
  while (!reply.empty()) {
    std::string_view line = Cut(reply, '\n');
    if (!line.starts_with(' ')) continue;
    line.remove_prefix(1);
    // The name follows the first blank.
    std::string_view facts = Cut(line, ' ');
    while (!facts.empty()) {
      std::string_view value = Cut(facts, ';');
      const std::string fact = Lower(Cut(value, '='));
      if (fact == "type") kind = KindOf(Lower(value));
      if (fact == "size") entry.size = ReadNumber<std::int64_t>(value);
      if (fact == "modify") entry.modified = ReadTimeVal(value);
      if (fact == "unix.mode") octal = value;
      TakeOwner(fact, value, entry);
    }
    if (!kind) return false;
    entry.kind = *kind;
    if (!octal.empty()) entry.mode = ModeOf(octal, *kind);
    if (*kind != RemoteEntry::Kind::File) entry.size.reset();
    return true;
  }
  return false;
}

std::optional<RemoteTime> ReadTimeVal(std::string_view text) {
  using namespace std::chrono;
  constexpr std::array<std::size_t, 6> kDigits = {4, 2, 2, 2, 2, 2};
  std::array<int, 6> parts{};
  std::size_t at = 0;
  for (std::size_t i = 0; i < parts.size(); at += kDigits[i++]) {
    if (text.size() < at + kDigits[i]) return std::nullopt;
    const char* const begin = text.data() + at;
    const auto [end, error] = std::from_chars(begin, begin + kDigits[i], parts[i]);
    if (error != std::errc() || end != begin + kDigits[i] || *begin == '-') return std::nullopt;
  }
  const year_month_day day = year{parts[0]} / parts[1] / parts[2];
  if (!day.ok() || parts[3] > 23 || parts[4] > 59 || parts[5] > 60) return std::nullopt;
  const sys_seconds moment =
      sys_days(day) + hours(parts[3]) + minutes(parts[4]) + seconds(parts[5]);
  return RemoteTime{moment.time_since_epoch().count(), RemoteTime::Precision::Second};
}

std::optional<std::int64_t> ReadQuota(std::string_view reply) {
  constexpr std::array<std::pair<std::string_view, double>, 4> kUnits = {
      {{"bytes", 1}, {"kb", 1024}, {"mb", 1024. * 1024}, {"gb", 1024. * 1024 * 1024}}};
  while (!reply.empty()) {
    const std::string lower = Lower(Cut(reply, '\n'));
    std::string_view line = lower;
    line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
    if (Cut(line, ' ') != "uploaded") continue;
    const std::string_view name = Cut(line, ':');
    const auto* const unit = std::ranges::find(kUnits, name, [](const auto& u) { return u.first; });
    if (unit == kUnits.end()) continue;
    const auto used = ReadNumber<double>(Cut(line, '/'));
    const auto limit = ReadNumber<double>(line);
    if (!used || !limit || *limit > 1e15) return std::nullopt;
    return static_cast<std::int64_t>(std::max(*limit - *used, 0.) * unit->second);
  }
  return std::nullopt;
}

}  // namespace corvane
