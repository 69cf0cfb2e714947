#pragma once

#include <QAbstractButton>

namespace corvane {

/// A word in a line that does something when it is pressed. GUI thread.
class LinkButton : public QAbstractButton {
  Q_OBJECT

 public:
  LinkButton(const QString& text, QWidget* parent);

  [[nodiscard]] QSize sizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;
};

}  // namespace corvane
