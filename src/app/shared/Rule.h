#pragma once

#include <QWidget>

namespace corvane {

/// A line between two areas of a window, a pixel wide. GUI thread.
class Rule : public QWidget {
  Q_OBJECT

 public:
  Rule(Qt::Orientation orientation, QWidget* parent);

 protected:
  void paintEvent(QPaintEvent* event) override;
};

}  // namespace corvane
