#include "app/browser/MWListItem.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <utility>

#include "app/shared/ScreenText.h"

namespace corvane {
namespace {

constexpr int kBaseYear = 1900;

/// Twenty bits of year, offset so that every sane year is positive, then eight bits for each of
/// month, day, hour, minute and second.
std::uint64_t PackTime(const std::tm& time) {
  const auto byte = [](int value) { return static_cast<std::uint64_t>(value & 0xFF); };
  std::uint64_t key = static_cast<std::uint64_t>(std::clamp(time.tm_year + kBaseYear, 0, 0xFFFFF));
  for (const int part : {time.tm_mon, time.tm_mday, time.tm_hour, time.tm_min, time.tm_sec}) {
    key = key << 8 | byte(part);
  }
  return key;
}

// As the user's clock shows it; a time in the server's own zone as it stands.
std::uint64_t PackTime(const RemoteTime& moment) {
  const std::time_t seconds = moment.seconds;
  std::tm time{};
  const bool known = (moment.utc ? ::localtime_r : ::gmtime_r)(&seconds, &time) != nullptr;
  return known ? PackTime(time) : 0;
}

std::int64_t SecondsOf(std::tm time) {
  return ::timegm(&time);
}

int PartOf(std::uint64_t time, int shift) {
  return static_cast<int>(time >> shift & 0xFF);
}

std::int64_t SizeOf(const RemoteEntry& entry) {
  if (entry.kind == RemoteEntry::Kind::Directory) return kDirectorySize;
  if (entry.kind == RemoteEntry::Kind::Link) return kLinkSize;
  return entry.size.value_or(kNoSize);
}

template <typename... Values>
std::string Printed(const char* format, Values... values) {
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), format, values...);
  return text.data();
}

/// The text of a file's size, in three ranges. The kilobyte divides by 1,024, the megabyte by
/// 1,024,000, and the megabyte has two blanks before its unit: the column lines up on it.
std::string FileSizeText(std::int64_t size) {
  constexpr std::int64_t kKilo = 1024;
  constexpr std::int64_t kMega = 1'024'000;
  if (size < kKilo) return " " + std::to_string(size) + " B";
  if (size < kMega)
    return Printed(" %.2f KB", static_cast<double>(static_cast<float>(size) / kKilo));
  return Printed(" %.2f  MB", static_cast<double>(static_cast<float>(size) / kMega));
}

}  // namespace

int CompareLowered(std::string_view a, std::string_view b) {
  const std::size_t common = std::min(a.size(), b.size());
  for (std::size_t i = 0; i < common; ++i) {
    const int difference = Lowered(a[i]) - Lowered(b[i]);
    if (difference != 0) return difference < 0 ? -1 : 1;
  }
  if (a.size() == b.size()) return 0;
  return a.size() < b.size() ? -1 : 1;
}

MWListItem::MWListItem(const RemoteEntry& entry, std::shared_ptr<const EntryAttributes> attributes)
    : name_(entry.name),
      size_(SizeOf(entry)),
      time_(entry.modified ? PackTime(*entry.modified) : 0),
      seconds_(entry.modified ? entry.modified->seconds : 0),
      attributes_(std::move(attributes)),
      type_(static_cast<std::uint8_t>(entry.kind)),
      kind_(entry.unclear ? EntryKind::Unclear : KindOf(type_, entry.name)),
      isLink_(type_ == kLink),
      inUtc_(entry.modified && entry.modified->utc),
      precision_(entry.modified ? entry.modified->precision : RemoteTime::Precision::Day) {}

MWListItem::MWListItem(const fileStruct& entry, std::string name)
    : name_(std::move(name)),
      size_(entry.size),
      time_(PackTime(entry.time)),
      seconds_(SecondsOf(entry.time)),
      attributes_(std::make_shared<const EntryAttributes>(
          EntryAttributes{entry.permissions, entry.owner, entry.group, {}})),
      type_(static_cast<std::uint8_t>(entry.type)),
      kind_(KindOf(entry.type, name_)),
      isLink_(type_ == kLink) {}

QString MWListItem::TextOf(std::string_view raw) const {
  return ToText(raw, attributes_->encoding);
}

std::string MWListItem::SizeText() const {
  if (size_ == kDirectorySize) return " <dir>";
  if (size_ == kLinkSize) return " <link>";
  if (size_ < 0) return " -";
  // A small file behind a link keeps the link's mark.
  if (wasLink_ && size_ < 1024) return "  <link>" + std::to_string(size_) + " B";
  return FileSizeText(size_);
}

std::string MWListItem::DateText() const {
  if (IsDots() || time_ == 0) return "-";
  return Printed("%02d/%02d/%d", PartOf(time_, 32) + 1, PartOf(time_, 24),
                 static_cast<int>(time_ >> 40));
}

QDate MWListItem::Day() const {
  if (time_ == 0) return {};
  return {static_cast<int>(time_ >> 40), PartOf(time_, 32) + 1, PartOf(time_, 24)};
}

std::optional<QTime> MWListItem::Time() const {
  if (time_ == 0 || precision_ == RemoteTime::Precision::Day) return std::nullopt;
  return QTime(PartOf(time_, 16), PartOf(time_, 8), std::min(PartOf(time_, 0), 59));
}

std::optional<RemoteTime> MWListItem::Modified() const {
  if (time_ == 0) return std::nullopt;
  return RemoteTime{seconds_, precision_, inUtc_};
}

fileStruct MWListItem::GetFileInfo() const {
  fileStruct entry;
  entry.permissions = attributes_->permissions;
  entry.owner = attributes_->owner;
  entry.group = attributes_->group;
  entry.date = DateText();
  entry.sizeString = SizeText();
  entry.size = size_;
  entry.name = name_;
  entry.displayName = name_;
  entry.type = type_;
  return entry;
}

void MWListItem::BecomeFile(std::int64_t size) {
  size_ = size;
  type_ = kFile;
  kind_ = KindOf(type_, name_);
  wasLink_ = true;
  EntryAttributes attributes = *attributes_;
  if (!attributes.permissions.empty()) attributes.permissions[0] = '-';
  attributes_ = std::make_shared<const EntryAttributes>(std::move(attributes));
}

void MWListItem::SetSizeAndTime(std::int64_t size, const std::tm& time) {
  size_ = size;
  wasLink_ = false;
  time_ = PackTime(time);
  seconds_ = SecondsOf(time);
  inUtc_ = false;
  precision_ = RemoteTime::Precision::Second;
}

void MWListItem::RenameItem(std::string name) {
  name_ = std::move(name);
  kind_ = KindOf(type_, name_);
}

}  // namespace corvane
