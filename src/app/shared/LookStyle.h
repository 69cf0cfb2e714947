#pragma once

#include <QProxyStyle>

class QPushButton;

namespace corvane {

/// How every control of the program looks: the toolkit's own style with flat buttons, plain
/// outlines, a ring around what has the focus, and the heights and gaps of one grid. All colours
/// come from the palette. GUI thread.
class LookStyle : public QProxyStyle {
  Q_OBJECT

 public:
  LookStyle();

  /// Heights of what stands in a row of controls, and of a row in a list, in pixels.
  static constexpr int kControlHeight = 32;
  static constexpr int kRowHeight = 28;
  static constexpr int kLeastButtonWidth = 88;

  void polish(QPalette& palette) override;
  using QProxyStyle::polish;
  void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override;
  void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                   const QWidget* widget) const override;
  void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                          QPainter* painter, const QWidget* widget) const override;
  [[nodiscard]] QSize sizeFromContents(ContentsType type, const QStyleOption* option,
                                       const QSize& size, const QWidget* widget) const override;
  [[nodiscard]] int pixelMetric(PixelMetric metric, const QStyleOption* option,
                                const QWidget* widget) const override;
  [[nodiscard]] int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                              QStyleHintReturn* data) const override;
};

/// Makes `button` the filled one of its window: what the user most likely wants, and in a question
/// the answer that does no harm. One a window.
void SetPrimary(QPushButton& button);

}  // namespace corvane
