#pragma once

#include <QDate>
#include <QString>
#include <QTime>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>

#include "app/browser/EntryKind.h"
#include "remote/RemoteEntry.h"
#include "remote/fileStruct.h"

namespace corvane {

/// What many rows of a listing have in common, kept once.
struct EntryAttributes {
  std::string permissions;
  std::string owner;
  std::string group;
  std::string linkTarget{};
  std::string encoding{};  ///< of the site, in which names are read that are no UTF-8

  friend bool operator<(const EntryAttributes& a, const EntryAttributes& b) {
    return std::tie(a.permissions, a.owner, a.group, a.linkTarget, a.encoding) <
           std::tie(b.permissions, b.owner, b.group, b.linkTarget, b.encoding);
  }
};

/// One row of the listing, small enough that a hundred thousand of them do no harm: texts are made
/// when they are painted. A value; not locked.
class MWListItem {
 public:
  MWListItem(const RemoteEntry& entry, std::shared_ptr<const EntryAttributes> attributes);
  MWListItem(const fileStruct& entry, std::string name);

  [[nodiscard]] const std::string& Name() const { return name_; }
  /// The name, and any other of the entry's bytes, as the screen shows them.
  [[nodiscard]] QString NameText() const { return TextOf(name_); }
  [[nodiscard]] QString TextOf(std::string_view raw) const;
  [[nodiscard]] std::int64_t Size() const { return size_; }
  /// Year to second packed so that later is greater; 0 when the server did not tell.
  [[nodiscard]] std::uint64_t TimeKey() const { return time_; }
  [[nodiscard]] std::int32_t Type() const { return type_; }
  /// Whether it was listed as a link, whatever it has turned out to lead to.
  [[nodiscard]] bool IsLink() const { return isLink_ || !attributes_->linkTarget.empty(); }
  [[nodiscard]] EntryKind Kind() const { return kind_; }
  [[nodiscard]] const EntryAttributes& Attributes() const { return *attributes_; }
  /// The rows "." and "..".
  [[nodiscard]] bool IsDots() const { return name_ == "." || name_ == ".."; }

  /// Size and date as the row's record has them.
  [[nodiscard]] std::string SizeText() const;
  [[nodiscard]] std::string DateText() const;
  /// The day of the last change; not valid when the server did not tell.
  [[nodiscard]] QDate Day() const;
  /// The time of that day, where the server told it.
  [[nodiscard]] std::optional<QTime> Time() const;
  /// The last change as the server told it; nothing when it did not.
  [[nodiscard]] std::optional<RemoteTime> Modified() const;

  /// The row as the record that a transfer takes; its time is not filled.
  [[nodiscard]] fileStruct GetFileInfo() const;

  void SetSizeAndTime(std::int64_t size, const std::tm& time);
  void RenameItem(std::string name);
  /// A link that has turned out to lead to a file of `size` bytes.
  void BecomeFile(std::int64_t size);

 private:
  std::string name_;
  std::int64_t size_;
  std::uint64_t time_;
  std::int64_t seconds_;  // since 1970, of the last change; in the server's zone where not inUtc_
  std::shared_ptr<const EntryAttributes> attributes_;
  std::uint8_t type_;
  EntryKind kind_;
  bool isLink_;
  bool wasLink_ = false;
  bool inUtc_ = false;
  RemoteTime::Precision precision_ = RemoteTime::Precision::Second;
};

/// An ASCII letter lowered, any other byte as it is, as an unsigned value.
[[nodiscard]] constexpr unsigned char Lowered(char c) {
  return static_cast<unsigned char>(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c);
}

/// Byte order of two names with ASCII letters lowered: below, equal or above 0.
[[nodiscard]] int CompareLowered(std::string_view a, std::string_view b);

}  // namespace corvane
