#pragma once

#include <QString>
#include <string>
#include <string_view>

namespace corvane {

class MWListItem;

/// Finds the names that contain a text, or begin with it, whatever the case. A value; not locked.
class NameFilter {
 public:
  NameFilter() = default;
  explicit NameFilter(const QString& text);

  [[nodiscard]] const QString& Text() const { return text_; }
  [[nodiscard]] bool IsEmpty() const { return text_.isEmpty(); }
  /// Whether the row's name contains the text as it is shown.
  [[nodiscard]] bool Matches(const MWListItem& item) const;
  [[nodiscard]] bool Begins(const MWListItem& item) const;

 private:
  QString text_;
  std::string ascii_;  // the text in small letters, where it has ASCII alone
};

}  // namespace corvane
