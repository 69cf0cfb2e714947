#pragma once

#include <string_view>

namespace corvane {

/// Plays event sounds beside everything else.
class SoundPlayer {
 public:
  /// Starts a sound file and returns. "none", an empty path, a missing file and a machine without
  /// a sound device play nothing. Any thread.
  static void Play(std::string_view path);
};

}  // namespace corvane
