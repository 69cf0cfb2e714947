#pragma once

#include <QFrame>
#include <QStringList>
#include <vector>

namespace corvane {

/// The facts of a question in a card: rows of a label and one or more texts. Many rows scroll. GUI
/// thread.
class QuestionCard : public QFrame {
  Q_OBJECT

 public:
  /// `facts`: as an alert has them (Alerts::Question::facts). `width`: in pixels.
  QuestionCard(const std::vector<QStringList>& facts, int width, QWidget* parent);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  [[nodiscard]] QWidget* MakeTable(const std::vector<QStringList>& facts, int width);
};

}  // namespace corvane
