#pragma once

#include <optional>

#include "remote/Site.h"
#include "settings/ProcessSettings.h"

namespace corvane {

/// The proxy of the settings; nothing where none is used. One that is used but has no address has
/// an empty host. A port that is no number is 0; a kind that is unknown is that of an FTP proxy.
[[nodiscard]] std::optional<Proxy> ProxyOf(const SettingsValues& settings);

}  // namespace corvane
