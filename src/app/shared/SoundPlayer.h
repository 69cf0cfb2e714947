#pragma once

#include "remote/OwnerUi.h"

namespace corvane {

/// Plays event sounds beside everything else.
class SoundPlayer {
 public:
  /// Starts the file that the settings name for a sound, and returns. "none", an empty path, a
  /// missing file and a machine without a sound device play nothing. Any thread.
  static void Play(Sound sound);
};

}  // namespace corvane
