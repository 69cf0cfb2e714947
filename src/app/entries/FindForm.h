#pragma once

#include <QWidget>
#include <string>

#include "workers/TreeFinder.h"

class QCheckBox;
class QComboBox;
class QDateEdit;
class QGridLayout;
class QLineEdit;
class QSpinBox;

namespace corvane {

/// What is to be found: by name, size, age and kind. GUI thread.
class FindForm : public QWidget {
  Q_OBJECT

 public:
  explicit FindForm(QWidget* parent);

  /// What was entered; names that are no UTF-8 are read in `encoding`.
  [[nodiscard]] FindRule Rule(const std::string& encoding) const;

 Q_SIGNALS:
  void ReturnPressed();

 private:
  void AddName(QGridLayout& grid);
  void AddSize(QGridLayout& grid);
  void AddAge(QGridLayout& grid);
  void AddKind(QGridLayout& grid);
  void Update();

  QLineEdit* name_;
  QCheckBox* matchesCase_;
  QComboBox* sizeIs_;
  QSpinBox* size_;
  QComboBox* unit_;
  QComboBox* changed_;
  QSpinBox* days_;
  QDateEdit* day_;
  QComboBox* kind_;
};

}  // namespace corvane
