#pragma once

#include <QLabel>

namespace corvane {

/// Plain text of several lines in a given width, which the user may copy. A word that is longer
/// than a line is broken. GUI thread.
class WrappedLabel : public QLabel {
  Q_OBJECT

 public:
  WrappedLabel(const QString& text, QWidget* parent);

  /// The width in which no line is broken.
  [[nodiscard]] int NaturalWidth() const;
  /// Gives it that width and the height that its text takes then.
  void WrapAt(int width);
  /// Shows it in less weight, and without a way to copy it.
  void SetSecondary();

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  bool secondary_ = false;
};

}  // namespace corvane
