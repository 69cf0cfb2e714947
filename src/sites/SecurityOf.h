#pragma once

#include <algorithm>

#include "remote/Site.h"
#include "settings/ProcessSettings.h"

namespace corvane {

/// How new connections are protected. A stored number that means nothing is Automatic.
[[nodiscard]] inline Security SecurityOf(const SettingsValues& settings) {
  const std::int32_t number = settings.security;
  const bool known = number == std::clamp(number, 0, static_cast<std::int32_t>(Security::Plain));
  return known ? static_cast<Security>(number) : Security::Automatic;
}

}  // namespace corvane
