#pragma once

#include <QDialog>
#include <vector>

#include "sites/ShortcutImport.h"

class QLabel;
class QPushButton;
class QTreeWidget;

namespace corvane {

/// Shows what a file of connections holds, and lets the user choose what comes into the list.
/// Deletes itself when closed. GUI thread.
class ImportWindow : public QDialog {
  Q_OBJECT

 public:
  ImportWindow(ShortcutImport import, QWidget* list);

  /// What is chosen.
  [[nodiscard]] std::vector<Shortcut> Shortcuts() const;
  [[nodiscard]] const std::vector<ShortcutFolder>& Folders() const { return import_.folders; }

 Q_SIGNALS:
  /// The user takes what is chosen.
  void Chosen();

 private:
  enum Column { kLabel, kAddress, kFolder, kRemark };

  void MakeRows();
  void MakeViews();
  [[nodiscard]] static QString RemarkOf(const ImportedShortcut& entry);
  void ChooseAll(bool all);
  void ShowCount();

  const ShortcutImport import_;
  QTreeWidget* rows_;
  QLabel* count_;
  QPushButton* ok_;
};

}  // namespace corvane
