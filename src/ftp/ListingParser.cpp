#include "ftp/ListingParser.h"

#include <algorithm>
#include <array>
#include <ctime>

#include "ftp/ListingDos.h"
#include "ftp/ListingEmbedded.h"
#include "ftp/ListingEplf.h"
#include "ftp/ListingFacts.h"
#include "ftp/ListingHeadings.h"
#include "ftp/ListingIbmI.h"
#include "ftp/ListingMvs.h"
#include "ftp/ListingNetware.h"
#include "ftp/ListingUnix.h"
#include "ftp/ListingVms.h"

namespace corvane {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

// No line fits two of them, but the last takes what none of the others does.
constexpr std::array<ReadListingLine, 10> kDialects = {
    ReadUnixLine, ReadDosLine,  ReadNetwareLine,  ReadEplfLine, ReadVmsLine,
    ReadOs2Line,  ReadIbmILine, ReadEmbeddedLine, ReadMvsLine,  ReadUnclearLine};

}  // namespace

ListingParser::ListingParser(std::string_view text, std::chrono::year_month_day now, Form form)
    : rest_(text), now_(now), form_(form), fits_(ReadUnixLine) {
  if (rest_.starts_with(kByteOrderMark)) rest_.remove_prefix(kByteOrderMark.size());
}

bool ListingParser::Next(RemoteEntry& entry) {
  while (!rest_.empty()) {
    std::string_view line = TakeLine();
    if (!doubled_) doubled_ = line.ends_with('\r');
    if (*doubled_ && line.ends_with('\r')) line.remove_suffix(1);
    if (line.find_first_not_of(" \t") == std::string_view::npos) continue;
    if (!Read(line, entry)) continue;
    ++known_;
    if (entry.name.size() > kMaxName) {
      entry.name.resize(kMaxName + 1);
      tooLong_.push_back(entry);
      continue;
    }
    if (entry.unclear) ++unclear_;
    if (entry.name != "." && entry.name != "..") return true;
  }
  return false;
}

std::string_view ListingParser::TakeLine() {
  const std::string_view line = rest_.substr(0, rest_.find('\n'));
  rest_.remove_prefix(std::min(rest_.size(), line.size() + 1));
  return line;
}

bool ListingParser::Read(std::string_view text, RemoteEntry& entry) {
  if (form_ == Form::Facts) {
    const bool read = ReadFactsLine(text, entry);
    if (!read) ++strange_;
    return read;
  }
  ListingLine line{.text = text, .following = rest_, .now = now_, .columns = columns_};
  if (ReadLine(line, entry)) {
    if (line.takesNext) (void)TakeLine();
    return true;
  }
  if (!IsHeading(text, known_ + strange_ == 0, columns_)) ++strange_;
  return false;
}

bool ListingParser::ReadLine(ListingLine& line, RemoteEntry& entry) {
  if (fits_(line, entry)) return true;
  const auto fits = std::ranges::find_if(
      kDialects, [&](ReadListingLine read) { return read != fits_ && read(line, entry); });
  if (fits == kDialects.end()) return false;
  if (*fits != ReadUnclearLine) fits_ = *fits;
  return true;
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
