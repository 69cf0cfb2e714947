#pragma once

#include <QDialog>

#include "app/shared/Alerts.h"
#include "app/shared/Style.h"

class QButtonGroup;
class QCheckBox;
class QPushButton;

namespace corvane {

class Password;

/// One alert: a sign, the question, what stands below it, a card of facts, a field, choices where
/// there are many, and the buttons, of which the preset one stands last and has the focus. GUI
/// thread.
class QuestionBox : public QDialog {
  Q_OBJECT

 public:
  QuestionBox(const Alerts::Question& question, QWidget* window);

  /// The index of the button that was pressed, or what stands for closing the alert.
  [[nodiscard]] int Answer() const { return answer_; }
  /// Whether the check box is set.
  [[nodiscard]] bool Ticked() const;
  /// What stands in the field.
  [[nodiscard]] std::string Entered() const;

 protected:
  void showEvent(QShowEvent* event) override;

 private:
  [[nodiscard]] QLayout* MakeContents(const Alerts::Question& question);
  [[nodiscard]] QWidget* MakeCard(const Alerts::Question& question, const Wording& wording,
                                  int width);
  [[nodiscard]] QLayout* MakeField(const Alerts::Question& question);
  [[nodiscard]] QLayout* MakeChoices(const Alerts::Question& question);
  [[nodiscard]] QLayout* MakeButtons(const Alerts::Question& question);
  void Press(int button);
  void ShowChosen();

  int answer_;
  QPushButton* primary_ = nullptr;
  QCheckBox* tick_ = nullptr;
  Password* field_ = nullptr;
  QButtonGroup* choices_ = nullptr;  // null where every answer has a button
};

}  // namespace corvane
