#include "app/shared/SoundPlayer.h"

#include <canberra.h>
#include <unistd.h>

#include <string>

#include "kit/Background.h"
#include "settings/ProcessSettings.h"

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

std::string FileOf(Sound sound) {
  const SettingsValues settings = ProcessSettings::Get();
  switch (sound) {
    case Sound::LoginSucceeded: return settings.loginSsnd;
    case Sound::LoginFailed: return settings.loginFsnd;
    case Sound::Downloaded: return settings.dwnldsnd;
    case Sound::Uploaded: return settings.upldsnd;
  }
  return {};
}

void PlayNow(const std::string& path) {
  if (::access(path.c_str(), R_OK) != 0) return;
  if (ca_context* context = TheContext(); context != nullptr) {
    ca_context_play(context, 0, CA_PROP_MEDIA_FILENAME, path.c_str(), nullptr);
  }
}

}  // namespace

void SoundPlayer::Play(Sound sound) {
  const std::string path = FileOf(sound);
  if (path.empty() || path == "none") return;
  Background::Start("sound", [path] { PlayNow(path); });
}

}  // namespace corvane
