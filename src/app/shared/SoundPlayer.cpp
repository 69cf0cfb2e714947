#include "app/shared/SoundPlayer.h"

#include <canberra.h>
#include <unistd.h>

#include <string>

#include "kit/Background.h"

namespace corvane {
namespace {

/// One connection to the sound service for the whole run; made by the first sound and never torn
/// down, because a sound may still be playing.
ca_context* TheContext() {
  static ca_context* const context = [] {
    ca_context* made = nullptr;
    return ca_context_create(&made) == CA_SUCCESS ? made : nullptr;
  }();
  return context;
}

void PlayNow(const std::string& path) {
  if (::access(path.c_str(), R_OK) != 0) return;
  if (ca_context* context = TheContext(); context != nullptr) {
    ca_context_play(context, 0, CA_PROP_MEDIA_FILENAME, path.c_str(), nullptr);
  }
}

}  // namespace

void SoundPlayer::Play(std::string_view path) {
  if (path.empty() || path == "none") return;
  Background::Start("sound", [file = std::string(path)] { PlayNow(file); });
}

}  // namespace corvane
