#include "settings/ListingLooks.h"

#include <algorithm>
#include <sstream>
#include <string_view>
#include <vector>

#include "settings/Access.h"

namespace corvane {
namespace {

constexpr const char* kSet = "listings";
constexpr const char* kSites = "sites";  // a line for each: site, tab, look; the last visited first
constexpr std::int32_t kWidest = 10'000;

std::string Written(const ListingLook& look) {
  std::ostringstream text;
  text << look.sortColumn << ' ' << look.ascending << ' ' << look.directoriesFirst << ' '
       << look.natural;
  for (const ListingLook::Column& column : look.columns) {
    text << ' ' << column.shown << ' ' << column.width;
  }
  return text.str();
}

ListingLook Parsed(const std::string& line) {
  std::istringstream text(line);
  ListingLook look;
  text >> look.sortColumn >> look.ascending >> look.directoriesFirst >> look.natural;
  for (ListingLook::Column& column : look.columns) {
    text >> column.shown >> column.width;
    column.width = std::clamp(column.width, 0, kWidest);
  }
  const auto known = static_cast<std::int32_t>(ListingLook::kColumns);
  if (!text || look.sortColumn < 0 || look.sortColumn >= known) return {};
  look.columns.front().shown = true;
  return look;
}

std::vector<std::string> Lines(const PreferenceSet& set) {
  std::istringstream text(GetString(set, kSites, ""));
  std::vector<std::string> lines;
  for (std::string line; lines.size() < ListingLooks::kMost && std::getline(text, line);) {
    lines.push_back(std::move(line));
  }
  return lines;
}

// How the line of a site begins; what would end it is no part of a name that can be reached.
std::string Beginning(std::string site) {
  std::ranges::replace_if(
      site, [](char c) { return c == '\n' || c == '\t'; }, '?');
  return site + '\t';
}

}  // namespace

ListingLook ListingLooks::Read(const std::string& site) {
  const std::string beginning = Beginning(site);
  for (const std::string& line : Lines(PreferenceSet(kSet))) {
    if (line.starts_with(beginning)) return Parsed(line.substr(beginning.size()));
  }
  return {};
}

void ListingLooks::Keep(const std::string& site, const ListingLook& look) {
  const std::string beginning = Beginning(site);
  const std::string wanted = beginning + Written(look);
  {
    const PreferenceSet set(kSet);
    const std::vector<std::string> lines = Lines(set);
    if (!lines.empty() && lines.front() == wanted) return;
  }
  PreferenceSet set(kSet, PreferenceSet::Saving::Gathered);
  std::string text = wanted + '\n';
  std::size_t count = 1;
  for (const std::string& line : Lines(set)) {
    if (line.starts_with(beginning) || count == kMost) continue;
    text += line + '\n';
    ++count;
  }
  SaveString(set, kSites, text);
}

}  // namespace corvane
