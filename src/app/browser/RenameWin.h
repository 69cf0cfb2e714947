#pragma once

#include <QWidget>

class QLineEdit;

namespace corvane {

/// Asks for an entry's new name. Belongs to a browser window and is hidden, not closed. GUI thread.
class RenameWin : public QWidget {
  Q_OBJECT

 public:
  explicit RenameWin(QWidget* browser);

  /// Puts an entry's name into the first field.
  void Fill(const QString& name);
  [[nodiscard]] QString Original() const;
  [[nodiscard]] QString RenameTo() const;

 Q_SIGNALS:
  /// "Rename" was pressed; the window is hidden.
  void Entered();

 protected:
  void showEvent(QShowEvent* event) override;

 private:
  QLineEdit* original_;
  QLineEdit* renameTo_;
};

}  // namespace corvane
