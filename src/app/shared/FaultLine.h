#pragma once

#include <QLabel>
#include <QPointer>

class QFormLayout;

namespace corvane {

/// Says below a field what is wrong in it. Takes no room while there is nothing to say. GUI thread.
class FaultLine : public QLabel {
  Q_OBJECT

 public:
  explicit FaultLine(QWidget* parent);

  /// A line; what more it needs, its height for a width tells.
  [[nodiscard]] QSize sizeHint() const override { return {0, fontMetrics().height()}; }
  [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

  /// Shows `text`, which is read out too, below the row of `rows` in which `field` stands, and puts
  /// the focus there.
  void Say(QFormLayout& rows, QWidget& field, const QString& text);
  void Clear();

 Q_SIGNALS:
  /// It came, changed or went.
  void Changed();

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  QPointer<QWidget> field_;
};

}  // namespace corvane
