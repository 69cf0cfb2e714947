#pragma once

#include <optional>

#include "kit/Message.h"
#include "remote/Site.h"

namespace corvane {

/// The 'OPNC' that opens a browser window on a site: "host", "user", "pass" and "path" (strings,
/// those that are not empty), "port" (the number's 16 bits) and "passive". The proxy stays behind:
/// it comes from the settings of the program that opens the window.
[[nodiscard]] Message OpenMessage(const Site& site);

/// The site that an 'OPNC' names. Without "user" it is "anonymous", without "pass" a placeholder,
/// without "port" 21. Nothing without a host, or with the port 0.
[[nodiscard]] std::optional<Site> SiteIn(const Message& message);

}  // namespace corvane
