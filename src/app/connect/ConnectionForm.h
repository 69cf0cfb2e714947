#pragma once

#include <QWidget>

#include "sites/Shortcut.h"

class QCheckBox;
class QLineEdit;

namespace corvane {

class Password;

/// The fields of a connection, with or without that of its label. GUI thread.
///
/// Bytes that a field was filled with come back as they were unless the field's text was changed.
class ConnectionForm : public QWidget {
  Q_OBJECT

 public:
  enum class Label { Without, With };

  ConnectionForm(Label label, QWidget* parent);

  /// Fills label, host, user, password and path.
  void FillTexts(const Shortcut& connection);
  /// Fills the port and the box.
  void FillMode(const Shortcut& connection);
  /// What the fields say now; an empty port is 21, and one that is no number from 1 to 65535 is 0.
  [[nodiscard]] Shortcut Entered() const;

  QLineEdit* label = nullptr;  ///< null in a form without
  QLineEdit* host = nullptr;
  QLineEdit* user = nullptr;
  Password* password = nullptr;
  QLineEdit* path = nullptr;
  QLineEdit* port = nullptr;
  QCheckBox* passive = nullptr;

 Q_SIGNALS:
  /// Enter, in any field.
  void returnPressed();

 private:
  QLineEdit* Prepare(QLineEdit* field, const char* name, const QString& accessible);

  Shortcut filled_;
};

}  // namespace corvane
