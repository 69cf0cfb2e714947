#pragma once

#include <QWidget>

class QLineEdit;

namespace corvane {

/// The line above a listing's rows in which a new directory gets its name. No row: nothing that
/// looks names up finds it. GUI thread.
class NewDirectoryRow : public QWidget {
  Q_OBJECT

 public:
  explicit NewDirectoryRow(QWidget* parent);

  /// Offers a name, all of it selected, and takes the focus.
  void Open(const QString& suggestion);
  [[nodiscard]] QSize sizeHint() const override;

 Q_SIGNALS:
  /// A name was confirmed, by Enter or by going elsewhere.
  void Entered(const QString& name);
  /// The line is to go, after Entered or without it; `byKey` when the keyboard did it.
  void Closed(bool byKey);

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  bool eventFilter(QObject* field, QEvent* event) override;

 private:
  void End(bool confirmed, bool byKey);

  QLineEdit* name_;
  bool open_ = false;
};

}  // namespace corvane
