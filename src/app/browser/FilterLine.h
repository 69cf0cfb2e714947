#pragma once

#include <QWidget>

class QLabel;
class QLineEdit;

namespace corvane {

class DirListView;

/// The line above a listing in which the user types what the names shown are to contain. Hidden
/// until it is opened. GUI thread.
class FilterLine : public QWidget {
  Q_OBJECT

 public:
  /// `view` outlives the line, and opens it when the user wants to look for a name.
  FilterLine(DirListView& view, QWidget* parent);

  /// Shows the line and puts the cursor into it.
  void Open();
  /// Hides the line and shows all rows again.
  void Close();

 Q_SIGNALS:
  void OpenChanged(bool open);

 protected:
  bool eventFilter(QObject* field, QEvent* event) override;

 private:
  void ShowCount();

  DirListView& view_;
  QLineEdit* field_;
  QLabel* count_;
};

}  // namespace corvane
