#pragma once

#include <QTreeWidgetItem>
#include <string>

#include "util/Shortcut.h"

namespace corvane {

/// A row of the shortcut list, with the connection that it shows. GUI thread.
class ShortCutItem : public QTreeWidgetItem {
 public:
  explicit ShortCutItem(Shortcut shortcut);

  [[nodiscard]] const Shortcut& Record() const { return record_; }
  void SetRecord(Shortcut shortcut);
  /// The record's stored form.
  [[nodiscard]] std::string ReturnUrl() const;

 private:
  Shortcut record_;
};

}  // namespace corvane
