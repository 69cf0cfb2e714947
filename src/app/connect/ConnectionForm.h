#pragma once

#include <QWidget>

#include "sites/Shortcut.h"

class QCheckBox;
class QFormLayout;
class QLineEdit;

namespace corvane {

class EncryptionField;
class FaultLine;
class MoreFields;
class Password;
struct Url;

/// The fields of a connection. Hints say what holds where one stays empty. GUI thread.
///
/// Bytes that a field was filled with come back as they were unless the field's text was changed.
class ConnectionForm : public QWidget {
  Q_OBJECT

 public:
  /// With its label come the fields that few connections need.
  enum class Label { Without, With };

  ConnectionForm(Label label, QWidget* parent);

  /// Fills label, host, user, password and path.
  void FillTexts(const Shortcut& connection);
  /// Fills the port, the box and the encryption.
  void FillMode(const Shortcut& connection);
  void FillPort(std::uint16_t number);
  /// Blanks around the host go. An address that was written into its field fills the others as far
  /// as it goes. False, and the user told, where there is none or where it or the port cannot be
  /// read.
  bool TakeAddress();
  /// Fills the encryption where an address names one; the port's hint follows.
  void FillSecurity(const Url& address);
  /// What the fields say now; an empty port is the usual one, and one that is no number from 1 to
  /// 65535 is 0.
  [[nodiscard]] Shortcut Entered() const;

  QLineEdit* label = nullptr;  ///< null in a form without
  QLineEdit* host = nullptr;
  QLineEdit* user = nullptr;
  Password* password = nullptr;
  QLineEdit* path = nullptr;
  QLineEdit* port = nullptr;
  QCheckBox* passive = nullptr;
  EncryptionField* encryption = nullptr;

 Q_SIGNALS:
  /// Enter, in any field.
  void returnPressed();
  /// A line that says what is wrong came or went.
  void HeightChanged();

 protected:
  void showEvent(QShowEvent* event) override;

 private:
  QLineEdit* Prepare(QLineEdit* field, const char* name, const QString& accessible);
  void MakeRows();
  void SecurityChosen();
  /// Where the password comes from when its field stays empty.
  void ShowPasswordHint();
  /// Says what is wrong in `field`; false.
  bool Refuse(QLineEdit* field, const QString& text);

  FaultLine* fault_;
  QFormLayout* rows_;
  MoreFields* more_ = nullptr;  // null in a form without label
  Shortcut filled_;
  Security security_ = Security::Automatic;  // that the port goes with
};

}  // namespace corvane
