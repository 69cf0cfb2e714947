#include "ftp/ListingParser.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace corvane {
namespace {

constexpr std::string_view kBlankOrNewline = " \n";

std::int32_t TypeOf(char letter) {
  switch (letter) {
    case '-': return kFile;
    case 'd': return kDirectory;
    case 'c': return kDevice;
    default: return kLink;
  }
}

// A number of a date, kept to what a date can hold.
int Number(std::string_view digits) {
  int value = 0;
  std::from_chars(digits.data(), digits.data() + digits.size(), value);
  return std::clamp(value, 0, 9999);
}

// The name up to its " -> " marker.
std::string_view LinkName(std::string_view name) {
  const std::size_t arrow = name.find("->");
  if (arrow == std::string_view::npos || arrow == 0) return name;
  return name.substr(0, arrow - 1);
}

std::string Hundredths(float value, std::string_view unit) {
  std::array<char, 64> digits{};
  const auto [end, error] = std::to_chars(digits.data(), digits.data() + digits.size(),
                                          static_cast<double>(value), std::chars_format::fixed, 2);
  return std::string(digits.data(), end).append(unit);
}

}  // namespace

std::int64_t ParseSize(std::string_view digits) {
  std::int64_t value = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
  return error == std::errc() ? value : 0;
}

int Month(std::string_view name) {
  constexpr std::array<std::string_view, 12> kMonths = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                        "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
  const auto found = std::find(kMonths.begin(), kMonths.end(), name);
  return found == kMonths.end() ? 0 : static_cast<int>(found - kMonths.begin());
}

std::string SizeText(std::int64_t bytes) {
  if (bytes < 1024) return std::to_string(bytes) + " B";
  if (bytes < 1'024'000) return Hundredths(static_cast<float>(bytes) / 1024.0F, " KB");
  return Hundredths(static_cast<float>(bytes) / 1'024'000.0F, "  MB");
}

ListingParser::ListingParser(std::string_view text, bool totals) : rest_(text) {
  if (!totals) return;
  const std::string_view whole = rest_;
  if (Token(kBlankOrNewline) != "total") {
    rest_ = whole;
    return;
  }
  // The token ended at a blank or at the line's own end.
  const bool lineOpen = rest_.data() != whole.data() && rest_.data()[-1] != '\n';
  if (lineOpen) rest_.remove_prefix(std::min(rest_.size(), rest_.find('\n')));
}

bool ListingParser::Next(Fields& fields) {
  for (;;) {
    fields = Fields{};
    fields.permissions = Token(kBlankOrNewline);
    if (fields.permissions.empty()) return false;
    fields.type = TypeOf(fields.permissions.front());
    (void)Token(kBlankOrNewline);  // the link count
    fields.owner = Token(kBlankOrNewline);
    fields.group = Token(kBlankOrNewline);
    fields.size = Token(" ");
    fields.month = Token(kBlankOrNewline);
    fields.day = Token(kBlankOrNewline);
    fields.timeOrYear = Token(kBlankOrNewline);
    fields.name = Token("\n");
    if (fields.name.empty()) return false;
    // A year is printed one character narrower than a time, so a year's line may carry one more
    // blank before the name.
    if (!IsTimeOfDay(fields.timeOrYear) && fields.name.starts_with(' '))
      fields.name.remove_prefix(1);
    if (fields.name != "." && fields.name != ".." && !fields.name.empty()) return true;
  }
}

std::string_view ListingParser::Token(std::string_view separators) {
  const std::size_t begin = rest_.find_first_not_of(separators);
  if (begin == std::string_view::npos) {
    rest_.remove_prefix(rest_.size());
    return {};
  }
  rest_.remove_prefix(begin);
  const std::size_t end = std::min(rest_.size(), rest_.find_first_of(separators));
  const std::string_view token = rest_.substr(0, end);
  rest_.remove_prefix(std::min(rest_.size(), end + 1));
  return token;
}

EntryMaker::EntryMaker(const std::tm& now) : now_(now) {
  entry_.time = now;
}

fileStruct EntryMaker::Dots(std::string_view name) const {
  fileStruct row;
  row.time = now_;
  row.name = name;
  return row;
}

const fileStruct& EntryMaker::Make(const ListingParser::Fields& fields) {
  entry_.permissions = fields.permissions;
  entry_.type = fields.type;
  entry_.owner = fields.owner;
  entry_.group = fields.group;
  if (!fields.size.empty()) SetSize(fields);
  if (!fields.month.empty()) SetDate(fields);
  entry_.name = fields.type == kLink ? LinkName(fields.name) : fields.name;
  return entry_;
}

void EntryMaker::SetSize(const ListingParser::Fields& fields) {
  switch (fields.type) {
    case kFile:
      entry_.size = ParseSize(fields.size);
      entry_.sizeString =
          entry_.size < 1024 ? std::string(fields.size).append(" B") : SizeText(entry_.size);
      break;
    case kLink:
      entry_.size = kLinkSize;
      entry_.sizeString = "<link>";
      break;
    case kDirectory:
      entry_.size = kDirectorySize;
      entry_.sizeString = "<dir>";
      break;
    default: break;
  }
}

void EntryMaker::SetDate(const ListingParser::Fields& fields) {
  std::tm& time = entry_.time;
  time.tm_sec = time.tm_min = time.tm_hour = 0;
  time.tm_mon = Month(fields.month);
  time.tm_mday = Number(fields.day);
  entry_.date.assign(fields.month).append(" ").append(fields.day);
  if (fields.timeOrYear.empty()) return;
  entry_.date.append(" ").append(fields.timeOrYear);
  entry_.timeOrYear = fields.timeOrYear;
  if (IsTimeOfDay(fields.timeOrYear)) {
    time.tm_hour = Number(fields.timeOrYear.substr(0, 2));
    time.tm_min = Number(fields.timeOrYear.substr(3));
    time.tm_year = now_.tm_year - (time.tm_mon > now_.tm_mon ? 1 : 0);
  } else {
    time.tm_year = Number(fields.timeOrYear) - 1900;
  }
}

}  // namespace corvane
