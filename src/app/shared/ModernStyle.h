#pragma once

#include "app/shared/Style.h"

namespace corvane {

/// The default: a password is edited like any other text, character by character.
class ModernStyle : public Style {
 public:
  void Type(HiddenText& text, const QString& typed) const override;
  void Backspace(HiddenText& text) const override;
  void Delete(HiddenText& text) const override;
  void Lose(HiddenText& text, qsizetype stars) const override;
  [[nodiscard]] int ExtraStars() const override { return 0; }
};

}  // namespace corvane
