#pragma once

#include <QLabel>

namespace corvane {

/// A bevelled bar that says how many entries a listing has. GUI thread.
class SmallView : public QLabel {
  Q_OBJECT

 public:
  explicit SmallView(QWidget* parent = nullptr);

  /// Shows "N Items".
  void SetText(int count);
  /// Shows `text`; the count stays.
  void SetText(const QString& text);
  [[nodiscard]] int Count() const { return count_; }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  int count_ = 0;
};

}  // namespace corvane
