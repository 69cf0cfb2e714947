#include "app/shared/EncryptionField.h"

namespace corvane {

EncryptionField::EncryptionField(QWidget* parent) : QComboBox(parent) {
  setObjectName("Encryption");
  setAccessibleName(tr("Encryption"));
  const auto add = [this](Security security, const QString& text, const QString& tip) {
    addItem(text, static_cast<int>(security));
    setItemData(count() - 1, tip, Qt::ToolTipRole);
  };
  add(Security::Automatic, tr("Where the server offers it"),
      tr("Encrypted wherever the server can do it, else not."));
  add(Security::Required, tr("Always"), tr("Without encryption there is no connection."));
  add(Security::Implicit, tr("Always, from the first byte on"),
      tr("For servers with a port of their own for it, mostly 990."));
  add(Security::Plain, tr("Never"), tr("Others can read your password and your files."));
}

void EncryptionField::Choose(Security security) {
  setCurrentIndex(findData(static_cast<int>(security)));
}

Security EncryptionField::Chosen() const {
  return static_cast<Security>(currentData().toInt());
}

QString EncryptionField::ShortText(Security security) {
  switch (security) {
    case Security::Automatic: return tr("Where offered");
    case Security::Plain: return tr("Never");
    case Security::Required:
    case Security::Implicit: break;
  }
  return tr("Always");
}

}  // namespace corvane
