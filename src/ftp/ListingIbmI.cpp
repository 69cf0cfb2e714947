#include "ftp/ListingIbmI.h"

#include <algorithm>
#include <array>

#include "ftp/ListingTimes.h"
#include "ftp/ListingWords.h"

namespace corvane {

bool ReadIbmILine(ListingLine& line, RemoteEntry& entry) {
  using Kind = RemoteEntry::Kind;
  using Precision = RemoteTime::Precision;
  constexpr std::array<std::string_view, 4> kDirectories = {"*DIR", "*LIB", "*FLR", "*DDIR"};
  const Words words = WordsOf(line.text);
  std::size_t at = 1;  // behind the owner
  RemoteEntry found;
  if (AreDigits(words[at])) found.size = SizeOf(words[at++]);
  if (IsNumericDay(words[at])) {
    const auto clock = ClockOf(words[at + 1]);
    if (!clock) return false;
    found.modified = Moment(NumericDay(words[at]), clock->seconds,
                            clock->toSeconds ? Precision::Second : Precision::Minute);
    at += 2;
  }
  const std::string_view type = words[at];
  constexpr std::string_view kCapitals = "ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789";
  if (type.size() < 3 || type.front() != '*' ||
      type.find_first_not_of(kCapitals, 1) != std::string_view::npos || IsBlank(line.text.front()))
    return false;
  std::string_view name = Behind(line.text, type);
  SkipBlanks(name);
  const bool below = name.size() > 1 && name.ends_with('/');
  if (below) name.remove_suffix(1);
  if (below || std::ranges::find(kDirectories, type) != kDirectories.end()) {
    found.kind = Kind::Directory;
    found.size.reset();
  } else if (type == "*SYMLNK") {
    found.kind = Kind::Link;
    found.mode = "l";
    found.size.reset();
  }
  found.owner = words[0];
  found.name = name;
  entry = std::move(found);
  return !entry.name.empty();
}

}  // namespace corvane
