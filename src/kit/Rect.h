#pragma once

namespace corvane {

/// A rectangle in pixels, edges included, as window frames are stored.
struct Rect {
  float left = 0;
  float top = 0;
  float right = 0;
  float bottom = 0;

  friend bool operator==(const Rect&, const Rect&) = default;
};

}  // namespace corvane
