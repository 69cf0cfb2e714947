#pragma once

#include <QLabel>

namespace corvane {

/// Plain words of less weight, on as many lines as they need. GUI thread.
class HintLabel : public QLabel {
  Q_OBJECT

 public:
  explicit HintLabel(const QString& text, QWidget* parent = nullptr);

  /// A line; what more it needs, its height for a width tells.
  [[nodiscard]] QSize sizeHint() const override { return {0, fontMetrics().height()}; }
  [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

 protected:
  void paintEvent(QPaintEvent* event) override;
};

}  // namespace corvane
