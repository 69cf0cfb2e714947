#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "remote/Site.h"
#include "settings/ProcessSettings.h"
#include "util/Url.h"

namespace corvane {

/// The number of a Security as it is stored; nothing for any other.
[[nodiscard]] std::optional<Security> SecurityFrom(std::int64_t number);

/// Where a URL leads; what it does not name is empty, the port the usual one. "ftp://" leaves it to
/// the preferences how new connections are protected.
[[nodiscard]] Site SiteOf(const Url& url);

/// Whether the user is asked before a password goes to that host unencrypted.
[[nodiscard]] bool WarnsOfPlain(const Site& site, const SettingsValues& settings);

/// The URL of a path on a site, without a login.
[[nodiscard]] Url UrlOf(const Site& site, const std::string& path);

}  // namespace corvane
