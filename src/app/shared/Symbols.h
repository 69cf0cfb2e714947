#pragma once

#include <QIcon>
#include <QString>

#include "app/shared/Tones.h"

class QColor;
class QPainter;
class QPalette;
class QRectF;

namespace corvane {

/// The line drawings of the windows, one family on a grid of 16, in the colours of the palette: as
/// text, as text that cannot be used, or on a selection. `name` is a file in icons/symbols without
/// its ending. GUI thread.
[[nodiscard]] QIcon Symbol(const char* name);
/// The same in one colour wherever it can be used.
[[nodiscard]] QIcon Symbol(const char* name, Tone tone);

/// Draws a symbol into the middle of `rect` at the size of its shorter side, in `color`.
void PaintSymbol(QPainter& painter, const QRectF& rect, const char* name, const QColor& color);

/// The colour in which a symbol of an entry stands in a list: directories in that of the highlight,
/// others as text.
[[nodiscard]] QColor EntryColor(const QPalette& palette, const char* name);

}  // namespace corvane
