#pragma once

#include <QTreeWidgetItem>
#include <string>

#include "sites/Shortcut.h"

namespace corvane {

/// A row of the shortcut list, with the connection that it shows. GUI thread.
class ShortCutItem : public QTreeWidgetItem {
 public:
  enum Column { kLabel, kHost, kUser, kPath, kMode, kKey };

  explicit ShortCutItem(Shortcut shortcut);

  /// Identifies the row. A row that was made later has a higher number.
  [[nodiscard]] int Id() const { return id_; }
  [[nodiscard]] const Shortcut& Record() const { return record_; }
  void SetRecord(Shortcut shortcut);
  /// Shows the key that the row of this number, in the order of the menu, has there.
  void ShowKey(int number);
  /// The record's stored form.
  [[nodiscard]] std::string ReturnUrl() const;

 private:
  const int id_;
  Shortcut record_;
};

}  // namespace corvane
