#pragma once

#include <optional>

#include "kit/Message.h"
#include "remote/Site.h"
#include "util/Url.h"

namespace corvane {

/// The 'OPNC' that opens a browser window on a site: "host", "user", "pass", "path", "encoding" and
/// "certificate" (strings, those that are not empty), "port" (the number's 16 bits), "passive",
/// "security" (a number), "asks" and "kept" (where they are true). What the settings say stays
/// behind: it comes from those of the program that opens the window.
[[nodiscard]] Message OpenMessage(const Site& site);

/// The 'OPNC' for a URL: what the URL leaves open is left to the program that opens the window.
[[nodiscard]] Message OpenMessage(const Url& url);

/// The site that an 'OPNC' names. Without "security" it is what the preferences have for new ones,
/// without "port" the usual one. Without "user" it is "anonymous", without "pass" a placeholder,
/// unless the password has to be found or asked for. Nothing without a host, or with the port 0.
[[nodiscard]] std::optional<Site> SiteIn(const Message& message);

}  // namespace corvane
