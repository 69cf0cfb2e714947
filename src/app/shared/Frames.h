#pragma once

#include <QRect>

#include "kit/Rect.h"
#include "settings/StoredSettings.h"

class QWidget;

namespace corvane {

/// Where windows stand: kept from run to run, and fitted to the screens that there are now. GUI
/// thread.
class Frames {
 public:
  /// The stored frame, moved and shrunk so that all of it is on a screen.
  [[nodiscard]] static QRect Restored(const FrameSetting& setting);
  /// `frame`, moved and shrunk so that all of it is on a screen.
  [[nodiscard]] static QRect OnScreen(const QRect& frame);
  /// The stored frame for a new browser window: cut off at the screen's edges, and widened when it
  /// is too narrow.
  [[nodiscard]] static QRect ForBrowser();
  /// Moves `window`, which is not shown yet, to the left edge of `opener` and below its title,
  /// where a screen has room for it.
  static void PutBelow(QWidget& window, const QWidget& opener);
  /// Remembers where `window` stands, or stood before it was maximised.
  static void Keep(const FrameSetting& setting, const QWidget& window);

  [[nodiscard]] static QRect FitInto(QRect frame, const QRect& screen);
  [[nodiscard]] static Rect FitBrowser(Rect frame, const Rect& screen);
};

}  // namespace corvane
