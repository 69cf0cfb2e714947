#pragma once

#include <QTreeWidgetItem>
#include <string>

namespace corvane {

/// A row of the shortcut list for a folder. GUI thread.
class FolderItem : public QTreeWidgetItem {
 public:
  static constexpr int kType = QTreeWidgetItem::UserType + 1;

  explicit FolderItem(std::string path);

  /// The row as a folder; null where it is another one, or none.
  [[nodiscard]] static FolderItem* Of(QTreeWidgetItem* item);

  [[nodiscard]] const std::string& Path() const { return path_; }

  bool operator<(const QTreeWidgetItem& other) const override;

 private:
  const std::string path_;
};

/// Whether `one` stands before `other` in a list that the user has sorted by a column: folders
/// always lead.
[[nodiscard]] bool StandsBefore(const QTreeWidgetItem& one, const QTreeWidgetItem& other);

}  // namespace corvane
