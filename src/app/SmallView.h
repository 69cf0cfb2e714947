#pragma once

#include <QLabel>

namespace corvane {

/// Shows how many entries a listing has. GUI thread.
class SmallView : public QLabel {
  Q_OBJECT

 public:
  explicit SmallView(QWidget* parent = nullptr);

  void SetCount(int count);
  [[nodiscard]] int Count() const { return count_; }

 private:
  int count_ = 0;
};

}  // namespace corvane
