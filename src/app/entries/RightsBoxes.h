#pragma once

#include <QWidget>
#include <array>
#include <optional>
#include <vector>

#include "workers/RightsChanger.h"

class QCheckBox;
class QLabel;
class QLineEdit;

namespace corvane {

/// Permissions as boxes and as a number, one following the other. A box stands in between where
/// entries differ, and is then to leave them as they are. GUI thread.
class RightsBoxes : public QWidget {
  Q_OBJECT

 public:
  explicit RightsBoxes(QWidget* parent);

  /// Shows what holds: the bits of each entry, nothing for one of which they are not known.
  void Show(const std::vector<std::optional<unsigned>>& rights);
  /// What the third column is called: to enter directories, or to execute files.
  void SetEnters(bool enters);
  /// Leaves the third column as it is.
  void LeaveExecute();

  /// What the user wants; special bits count where four digits were typed.
  [[nodiscard]] RightsChange Wanted() const;
  /// Whether that is anything else than what was shown.
  [[nodiscard]] bool IsChanged() const;
  /// Whether the number is complete.
  [[nodiscard]] bool IsValid() const;

 Q_SIGNALS:
  void Changed();

 private:
  void BoxChanged();
  void NumberTyped(const QString& text);
  /// Shows the boxes as a number, where none stands in between.
  void ShowNumber();
  void NameBoxes();

  std::array<QCheckBox*, 9> boxes_{};  // of the bits 0400 to 0001
  std::array<QLabel*, 3> columns_{};
  QLineEdit* number_;
  unsigned special_ = 0;  // shown with the number: what all entries have, or what was typed
  bool typedSpecial_ = false;
  RightsChange shown_;
};

}  // namespace corvane
