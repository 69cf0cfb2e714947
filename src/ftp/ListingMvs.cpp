#include "ftp/ListingMvs.h"

#include <algorithm>
#include <array>

#include "ftp/ListingTimes.h"
#include "ftp/ListingWords.h"

namespace corvane {
namespace {

using Kind = RemoteEntry::Kind;
using Precision = RemoteTime::Precision;

constexpr std::string_view kNational = "ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789@#$-";

// Qualifiers of at most eight characters each, parted by full stops; or all of it in quotes.
bool IsDataSet(std::string_view name) {
  constexpr std::size_t kLongest = 44;
  constexpr std::size_t kQualifier = 8;
  if (name.size() > 2 && name.starts_with('\'') && name.ends_with('\''))
    name = name.substr(1, name.size() - 2);
  if (name.empty() || name.size() > kLongest) return false;
  for (;;) {
    const std::string_view part = name.substr(0, name.find('.'));
    if (part.empty() || part.size() > kQualifier || IsDigit(part.front()) ||
        part.find_first_not_of(kNational) != std::string_view::npos)
      return false;
    if (part.size() == name.size()) return true;
    name.remove_prefix(part.size() + 1);
  }
}

bool IsMember(std::string_view name) {
  return IsDataSet(name) && name.find_first_of(".'") == std::string_view::npos;
}

// What the organisation says; what is of none that is known can be nothing that is followed.
Kind KindOf(std::string_view organisation) {
  if (organisation == "PO" || organisation == "PO-E") return Kind::Directory;
  constexpr std::array<std::string_view, 4> kFiles = {"PS", "PS-E", "PS-L", "DA"};
  return std::ranges::find(kFiles, organisation) != kFiles.end() ? Kind::File : Kind::Link;
}

// A line with every column is known without a heading.
bool ReadDataSet(const Words& words, RemoteEntry& entry) {
  constexpr std::size_t kColumns = 10;
  if (words.count != kColumns || !IsNumericDay(words[2]) || !IsDataSet(words[9])) return false;
  for (const std::size_t number : {std::size_t{3}, std::size_t{4}, std::size_t{6}, std::size_t{7}})
    if (!AreDigits(words[number])) return false;
  entry.kind = KindOf(words[8]);
  entry.modified = Moment(NumericDay(words[2]), 0, Precision::Day);
  entry.name = words[9];
  return true;
}

// Migrated, on tape, of VSAM, or with columns left empty: the name alone is certain.
bool ReadOtherDataSet(const Words& words, RemoteEntry& entry) {
  if (words.count < 2 || words.count == words.all.size()) return false;
  const std::string_view name = words[words.count - 1];
  const std::string_view before = words[words.count - 2];
  if (!IsDataSet(name)) return false;
  const bool directory = words[0] == "Pseudo" && words[1] == "Directory";
  entry.kind = directory ? Kind::Directory : KindOf(before);
  if (IsNumericDay(words[2])) entry.modified = Moment(NumericDay(words[2]), 0, Precision::Day);
  entry.name = name;
  return true;
}

bool ReadMember(const Words& words, bool module, RemoteEntry& entry) {
  if (!IsMember(words[0])) return false;
  entry.name = words[0];
  if (words.count == 1) return true;
  if (module) return words.count >= 3;
  // The version, the day of making, and day and time of the change.
  if (words[1].find('.') == std::string_view::npos || !IsNumericDay(words[3])) return false;
  const auto clock = ClockOf(words[4]);
  if (!clock) return false;
  entry.modified = Moment(NumericDay(words[3]), clock->seconds, Precision::Minute);
  return true;
}

}  // namespace

bool ReadMvsLine(ListingLine& line, RemoteEntry& entry) {
  const Words words = WordsOf(line.text);
  if (words.count == 0) return false;
  entry = {};
  switch (line.columns) {
    case ListingColumns::Members: return ReadMember(words, false, entry);
    case ListingColumns::Modules: return ReadMember(words, true, entry);
    case ListingColumns::DataSets:
      return ReadDataSet(words, entry) || ReadOtherDataSet(words, entry);
    case ListingColumns::None: break;
  }
  return ReadDataSet(words, entry);
}

}  // namespace corvane
