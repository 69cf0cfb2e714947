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

  explicit ShortCutItem(Shortcut shortcut);

  /// Identifies the row. A row that was made later has a higher number.
  [[nodiscard]] int Id() const { return id_; }
  [[nodiscard]] const Shortcut& Record() const { return record_; }
  void SetRecord(Shortcut shortcut);
  /// The record as it has been stored.
  void SetStored(Shortcut shortcut);
  /// The record, and where its password has been kept.
  [[nodiscard]] EditedShortcut Edited() const { return {record_, keptAs_}; }
  /// Shows the key that the row of this number, in the order of the menu, has there.
  void ShowKey(int number);
  /// The record's stored form.
  [[nodiscard]] std::string ReturnUrl() const;

 private:
  const int id_;
  Shortcut record_;
  std::optional<SecretKey> keptAs_;  // where its password is kept
};

}  // namespace corvane
