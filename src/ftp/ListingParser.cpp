#include "ftp/ListingParser.h"

#include <algorithm>
#include <ctime>
#include <utility>

#include "ftp/ListingDialects.h"
#include "ftp/ListingFacts.h"

namespace corvane {

bool ListingParser::Next(RemoteEntry& entry) {
  while (!rest_.empty()) {
    const std::size_t end = std::min(rest_.find('\n'), rest_.size());
    const std::string_view line = rest_.substr(0, end);
    rest_.remove_prefix(std::min(rest_.size(), end + 1));
    const bool first = std::exchange(first_, false);
    if (line.find_first_not_of(' ') == std::string_view::npos) continue;
    // Only the first line tells a total.
    if (first && form_ == Form::Lines && (line == "total" || line.starts_with("total "))) continue;
    if (!Read(line, entry)) {
      ++strange_;
      continue;
    }
    ++known_;
    if (entry.name.size() > kMaxName) {
      ++tooLong_;
      continue;
    }
    if (entry.name != "." && entry.name != "..") return true;
  }
  return false;
}

// A mode never begins with a digit, a date always does.
bool ListingParser::Read(std::string_view line, RemoteEntry& entry) const {
  if (form_ == Form::Facts) return ReadFactsLine(line, entry);
  const bool digit = line.front() >= '0' && line.front() <= '9';
  return digit ? ReadDosLine(line, entry) : ReadUnixLine(line, now_, entry);
}

std::chrono::year_month_day Today() {
  const std::time_t seconds = std::time(nullptr);
  std::tm now{};
  localtime_r(&seconds, &now);
  return std::chrono::year(now.tm_year + 1900) /
         std::chrono::month(static_cast<unsigned>(now.tm_mon) + 1) /
         std::chrono::day(static_cast<unsigned>(now.tm_mday));
}

}  // namespace corvane
