#include "ftp/FtpFeatures.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <string>
#include <utility>

#include "ftp/ListingFacts.h"

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

// Takes what "type*;size*;modify*;" says of the facts that are of use; a star marks one that is
// told unasked.
void TakeFacts(std::string_view list, FtpFeatures& features) {
  constexpr std::array<std::string_view, 10> kUseful = {
      "type",       "size",     "modify",   "unix.mode",      "unix.owner",
      "unix.group", "unix.uid", "unix.gid", "unix.ownername", "unix.groupname"};
  bool told = true;
  std::string needed;
  while (!list.empty()) {
    std::string_view fact = Cut(list, ';');
    fact.remove_prefix(std::min(fact.find_first_not_of(' '), fact.size()));
    const bool starred = fact.ends_with('*');
    if (starred) fact.remove_suffix(1);
    const std::string entry = std::string(fact) + ";";
    const bool useful = std::ranges::find(kUseful, fact) != kUseful.end();
    if (!useful || needed.find(entry) != std::string::npos) continue;
    features.facts = features.facts || fact == "type";
    told = told && starred;
    needed += entry;
  }
  features.neededFacts = told ? "" : needed;
}

}  // namespace

FtpFeatures ReadFeatures(std::string_view reply) {
  FtpFeatures features;
  features.modifiedTime = false;
  while (!reply.empty()) {
    std::string_view line = Cut(reply, '\n');
    if (!line.starts_with(' ')) continue;
    line.remove_prefix(std::min(line.find_first_not_of(' '), line.size()));
    const std::string lower = Lower(line);
    std::string_view rest = lower;
    const std::string_view name = Cut(rest, ' ');
    if (name == "mlst") TakeFacts(rest, features);
    TakeDigests(name, rest, features.digests);
    if (name == "mdtm") features.modifiedTime = features.dateByMdtm = true;
    features.setTime = features.setTime || name == "mfmt";
    features.siteTime = features.siteTime || lower.starts_with("site utime");
    features.utf8 = features.utf8 || name == "utf8";
    features.hosts = features.hosts || name == "host";
    features.copy = features.copy || lower.starts_with("site copy");
    features.room = features.room || name == "avbl";
  }
  return features;
}

// Many a server takes a name that begins with a date for a time that is to be set.
std::optional<std::string> AskTimeCommand(const FtpFeatures& features, const std::string& name) {
  if (!features.modifiedTime) return std::nullopt;
  const bool misleads = ReadTimeVal(name).has_value();
  return "MDTM " + std::string(misleads ? "./" : "") + name;
}

std::optional<std::string> TimeCommand(const FtpFeatures& features, const std::string& name,
                                       std::int64_t seconds) {
  const std::optional<std::string> time = WriteTimeVal(seconds);
  if (!time) return std::nullopt;
  if (features.setTime) return "MFMT " + *time + " " + name;
  if (features.dateByMdtm) return "MDTM " + *time + " " + name;
  if (features.siteTime)
    return "SITE UTIME " + name + " " + *time + " " + *time + " " + *time + " UTC";
  return std::nullopt;
}

void DropTimeCommand(FtpFeatures& features) {
  bool& way = features.setTime      ? features.setTime
              : features.dateByMdtm ? features.dateByMdtm
                                    : features.siteTime;
  way = false;
}

bool IsUnknownCommand(int code) {
  return code >= 500 && code <= 504;
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
