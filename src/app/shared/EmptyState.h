#pragma once

#include <QString>

class QPainter;
class QPalette;
class QRect;

namespace corvane {

/// What stands in a list that has nothing to show: a symbol, what is the case, and what to do.
struct EmptyState {
  const char* symbol;
  QString heading;
  QString text;

  /// Draws it into the middle of `rect`.
  void Paint(QPainter& painter, const QRect& rect, const QPalette& palette) const;
};

}  // namespace corvane
