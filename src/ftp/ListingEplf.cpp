#include "ftp/ListingEplf.h"

#include <charconv>

#include "ftp/ListingWords.h"

namespace corvane {

bool ReadEplfLine(ListingLine& line, RemoteEntry& entry) {
  using Kind = RemoteEntry::Kind;
  constexpr std::int64_t kLast = 253'402'300'799;  // the year 9999
  const std::size_t tab = line.text.find('\t');
  if (line.text.front() != '+' || tab == std::string_view::npos || tab + 1 == line.text.size())
    return false;
  entry = {};
  entry.kind = Kind::Link;
  entry.name = line.text.substr(tab + 1);
  std::string_view facts = line.text.substr(1, tab - 1);
  while (!facts.empty()) {
    const std::string_view fact = facts.substr(0, facts.find(','));
    facts.remove_prefix(std::min(facts.size(), fact.size() + 1));
    if (fact.empty()) continue;
    const std::string_view value = fact.substr(1);
    std::int64_t moment = 0;
    switch (fact.front()) {
      case '/': entry.kind = Kind::Directory; break;
      case 'r':
        if (entry.kind == Kind::Link) entry.kind = Kind::File;
        break;
      case 's':
        if (AreDigits(value)) entry.size = SizeOf(value);
        break;
      case 'm':
        if (std::from_chars(value.data(), value.data() + value.size(), moment).ec == std::errc() &&
            moment >= 0 && moment <= kLast)
          entry.modified = RemoteTime{moment, RemoteTime::Precision::Second, true};
        break;
      default: break;
    }
  }
  if (entry.kind != Kind::File) entry.size.reset();
  return true;
}

}  // namespace corvane
