#pragma once

#include <QFrame>

namespace corvane {

/// A rounded area with a fine edge, in which details stand. GUI thread.
class Card : public QFrame {
  Q_OBJECT

 public:
  explicit Card(QWidget* parent);

 protected:
  void paintEvent(QPaintEvent* event) override;
};

}  // namespace corvane
