#pragma once

#include "app/shared/Style.h"

namespace corvane {

/// A password is edited at its end, byte by byte, wherever the cursor stands among the stars.
class ClassicStyle : public Style {
 public:
  void Type(HiddenText& text, const QString& typed) const override;
  void Backspace(HiddenText& text) const override;
  void Delete(HiddenText& text) const override;
  void Lose(HiddenText& text, qsizetype stars) const override;
  [[nodiscard]] int ExtraStars() const override { return 1; }
};

}  // namespace corvane
