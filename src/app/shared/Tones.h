#pragma once

#include <QColor>
#include <QFont>
#include <cstdint>

class QPalette;

namespace corvane {

/// What a colour is for. All come out of the desktop's palette, or are fixed for light and for dark
/// themes with enough contrast on both.
enum class Tone : std::uint8_t {
  Secondary,  ///< text of less weight
  Outline,    ///< around fields and boxes
  Edge,       ///< around buttons and cards
  Line,       ///< between areas
  Hover,      ///< over what the pointer is on; translucent
  Stopped,    ///< the bar of what stands still
  Running,    ///< the bar of what runs, busy signs and the ring of the focus
  Primary,    ///< the filled button of a window
  Good,
  Bad,
  Caution,
};

[[nodiscard]] QColor ToneOf(const QPalette& palette, Tone tone);

/// `percent` of one colour over another.
[[nodiscard]] QColor Mixed(const QColor& over, const QColor& under, int percent);

/// `font` in bold, at `percent` of its size: 110 for questions, 125 for headings.
[[nodiscard]] QFont Bold(QFont font, int percent = 100);

}  // namespace corvane
