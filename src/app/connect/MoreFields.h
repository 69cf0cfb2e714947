#pragma once

#include <QObject>
#include <string>

#include "sites/Shortcut.h"

class QCheckBox;
class QComboBox;
class QFormLayout;
class QLineEdit;
class QSpinBox;

namespace corvane {

class IconButton;

/// What few connections need: rows at the end of a form, below a button that shows and hides them.
/// GUI thread.
class MoreFields : public QObject {
  Q_OBJECT

 public:
  /// Adds the button and the rows to `rows`; `form` owns them and this object.
  MoreFields(QFormLayout& rows, QWidget* form);

  /// Shows the rows where one of them holds something.
  void Fill(const Site& site);
  void Put(Site& site) const;

 Q_SIGNALS:
  /// The rows came or went.
  void HeightChanged();

 private:
  void MakeConnections();
  void MakeEncodings(QWidget* form);
  QWidget* MakeCertificateRow(QWidget* form);
  void Show(bool shown);
  void ChooseFile();

  QFormLayout& rows_;
  IconButton* more_;
  QComboBox* encoding_;
  QLineEdit* certificate_;
  QSpinBox* connections_;
  QCheckBox* asks_;
  bool shown_ = false;
  int first_ = 0;  // of the rows that come and go
  std::string file_;
};

}  // namespace corvane
