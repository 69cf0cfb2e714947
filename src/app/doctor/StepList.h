#pragma once

#include <QListWidget>

#include "remote/Diagnosis.h"

namespace corvane {

/// The steps of a diagnosis: a sign, the step's name, what was seen in it and how long it took.
/// Screen readers get each row as one sentence. GUI thread.
class StepList : public QListWidget {
  Q_OBJECT

 public:
  explicit StepList(QWidget* parent);

  /// Adds a step, or brings the one of its kind up to date.
  void Show(const DiagnosisStep& step);
  /// How many steps were tried, of those that are shown.
  [[nodiscard]] int Tried() const;
  /// A line for each step, for people who read no pictures.
  [[nodiscard]] QString AsText() const;
  /// Brings the step into sight that has found this, or the first one.
  void ShowFirst(Finding finding);

  [[nodiscard]] static QString WordFor(DiagnosisStep::Sign sign);
  /// "12 ms" or "10.0 s", in the user's locale.
  [[nodiscard]] static QString TimeText(std::chrono::milliseconds time);

 protected:
  void resizeEvent(QResizeEvent* event) override;

 private:
  [[nodiscard]] QListWidgetItem* RowOf(DiagnosisStep::Kind kind);
};

}  // namespace corvane
