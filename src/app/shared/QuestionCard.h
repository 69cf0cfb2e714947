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
  /// `facts`: as an alert has them (Alerts::Question::facts); the texts of row `fixed` stand in
  /// fixed width. `width`: in pixels.
  QuestionCard(const std::vector<QStringList>& facts, int fixed, int width, QWidget* parent);
  /// The width in which no line of row `fixed` is broken; 0 without such a row.
  [[nodiscard]] static int LeastWidth(const std::vector<QStringList>& facts, int fixed);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  [[nodiscard]] QWidget* MakeTable(const std::vector<QStringList>& facts, int fixed, int width);
};

}  // namespace corvane
