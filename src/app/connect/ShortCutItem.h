#pragma once

#include <QTreeWidgetItem>
#include <optional>
#include <string>

#include "app/connect/EditedShortcut.h"

namespace corvane {

/// A row of the shortcut list, with the connection that it shows. GUI thread.
class ShortCutItem : public QTreeWidgetItem {
 public:
  enum Column { kLabel, kHost, kUser, kPath, kMode, kEncryption, kKey };
  /// Of a cell that warns: the name of the symbol before its text.
  static constexpr int kWarning = Qt::UserRole;
  /// Of a folder's label: the name of its symbol.
  static constexpr int kSign = Qt::UserRole + 1;

  static constexpr int kType = QTreeWidgetItem::UserType;

  explicit ShortCutItem(Shortcut shortcut);

  /// The row as a shortcut; null where it is another one, or none.
  [[nodiscard]] static ShortCutItem* Of(QTreeWidgetItem* item);

  /// Identifies the row.
  [[nodiscard]] int Id() const { return id_; }
  [[nodiscard]] const Shortcut& Record() const { return record_; }
  void SetRecord(Shortcut shortcut);
  /// Puts the shortcut into the folder of that path.
  void SetFolder(const std::string& folder) { record_.folder = folder; }
  /// The record as it has been stored.
  void SetStored(Shortcut shortcut);
  /// The record, and where its password has been kept.
  [[nodiscard]] EditedShortcut Edited() const { return {record_, keptAs_}; }
  /// Shows the key that the row of this number, in the order of the menu, has there.
  void ShowKey(int number);
  /// The record's stored form.
  [[nodiscard]] std::string ReturnUrl() const;

  bool operator<(const QTreeWidgetItem& other) const override;

 private:
  const int id_;
  Shortcut record_;
  std::optional<SecretKey> keptAs_;  // where its password is kept
};

}  // namespace corvane
