#pragma once

#include <QLabel>

namespace corvane {

/// A line of plain text that gives way to its surroundings: what does not fit is left out of its
/// middle or end, and the tooltip tells all. GUI thread.
class ElidedLabel : public QLabel {
  Q_OBJECT

 public:
  explicit ElidedLabel(QWidget* parent, Qt::TextElideMode mode = Qt::ElideRight);

  /// Colours the text; `secondary` has less weight.
  void SetSecondary(bool secondary);

  [[nodiscard]] QSize minimumSizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  bool event(QEvent* event) override;

 private:
  Qt::TextElideMode mode_;
  bool secondary_ = false;
};

}  // namespace corvane
