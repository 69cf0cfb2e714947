#pragma once

#include <QComboBox>

#include "remote/Site.h"

namespace corvane {

/// How the way to a server is protected, to be chosen from a list. GUI thread.
class EncryptionField : public QComboBox {
  Q_OBJECT

 public:
  explicit EncryptionField(QWidget* parent);

  void Choose(Security security);
  [[nodiscard]] Security Chosen() const;

  /// The same in a word or two, for the column of a list.
  [[nodiscard]] static QString ShortText(Security security);
};

}  // namespace corvane
