#pragma once

#include "app/shared/Style.h"

namespace corvane {

/// The ways of old: a password is changed at its end, byte by byte, whatever the stars say.
class ClassicStyle : public Style {
 public:
  void Type(HiddenText& text, const QString& typed) const override;
  void Backspace(HiddenText& text) const override;
  void Delete(HiddenText& text) const override;
  void Lose(HiddenText& text, qsizetype stars) const override;
  [[nodiscard]] int ExtraStars() const override { return 1; }
};

}  // namespace corvane
