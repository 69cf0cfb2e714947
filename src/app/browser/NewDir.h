#pragma once

#include <QWidget>

class QLineEdit;

namespace corvane {

/// Asks for the name of a new directory. Belongs to a browser window and is hidden, not closed. GUI
/// thread.
class NewDir : public QWidget {
  Q_OBJECT

 public:
  explicit NewDir(QWidget* browser);

  [[nodiscard]] QString Name() const;

 Q_SIGNALS:
  /// "Create Dir" was pressed; the window is hidden.
  void Entered();

 protected:
  void showEvent(QShowEvent* event) override;

 private:
  QLineEdit* name_;
};

}  // namespace corvane
