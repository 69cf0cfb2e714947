#include "app/shared/Tones.h"

#include <QPalette>
#include <algorithm>
#include <array>
#include <cmath>

#include "app/shared/Icons.h"

namespace corvane {
namespace {

// Relative luminance as of WCAG 2.
double Luminance(const QColor& color) {
  const auto linear = [](double part) {
    return part <= 0.03928 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
  };
  return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
         0.0722 * linear(color.blueF());
}

double Contrast(const QColor& a, const QColor& b) {
  const auto [low, high] = std::minmax({Luminance(a), Luminance(b)});
  return (high + 0.05) / (low + 0.05);
}

// The highlight, darkened until its text can be read on it.
QColor Primary(const QPalette& palette) {
  constexpr double kReadable = 4.5;
  constexpr int kSteps = 20;
  QColor color = palette.color(QPalette::Highlight);
  const QColor text = palette.color(QPalette::HighlightedText);
  for (int step = 0; step < kSteps && Contrast(color, text) < kReadable; ++step) {
    color = color.darker(105);
  }
  return color;
}

QColor OverWindow(const QPalette& palette, int percent) {
  return Mixed(palette.color(QPalette::WindowText), palette.color(QPalette::Window), percent);
}

}  // namespace

QColor Mixed(const QColor& over, const QColor& under, int percent) {
  const auto part = [percent](int above, int below) {
    return (above * percent + below * (100 - percent)) / 100;
  };
  return {part(over.red(), under.red()), part(over.green(), under.green()),
          part(over.blue(), under.blue())};
}

QColor ToneOf(const QPalette& palette, Tone tone) {
  const bool dark = IsDark(palette);
  switch (tone) {
    case Tone::Secondary: return OverWindow(palette, 75);
    case Tone::Outline: return OverWindow(palette, dark ? 42 : 50);
    case Tone::Edge: return OverWindow(palette, dark ? 30 : 32);
    case Tone::Line: return OverWindow(palette, 16);
    case Tone::Stopped: return OverWindow(palette, 50);
    case Tone::Primary: return Primary(palette);
    case Tone::Hover: {
      QColor color = palette.color(QPalette::Text);
      color.setAlphaF(0.07F);
      return color;
    }
    case Tone::Running: {
      const QColor color = palette.color(QPalette::Highlight);
      return dark ? Mixed(color, Qt::white, 72) : color;
    }
    case Tone::Good: return dark ? 0x6fcf97 : 0x1c7443;
    case Tone::Bad: return dark ? 0xff9a91 : 0xb3261e;
    case Tone::Caution: return dark ? 0xf0c05a : 0x875400;
  }
  return {};
}

QFont Bold(QFont font, int percent) {
  font.setBold(true);
  if (font.pointSizeF() > 0) {
    font.setPointSizeF(font.pointSizeF() * percent / 100);
  } else {
    font.setPixelSize(font.pixelSize() * percent / 100);
  }
  return font;
}

}  // namespace corvane
