#pragma once

#include "app/shared/ElidedLabel.h"

namespace corvane {

/// What a status line says at its right: how many entries a listing has, or another figure. GUI
/// thread.
class SmallView : public ElidedLabel {
  Q_OBJECT

 public:
  explicit SmallView(QWidget* parent = nullptr);

  /// Shows the count as the style in force words it.
  void SetText(int count);
  /// Shows `text`; the count stays.
  void SetText(const QString& text);
  [[nodiscard]] int Count() const { return count_; }

 private:
  int count_ = 0;
};

}  // namespace corvane
