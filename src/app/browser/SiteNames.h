#pragma once

#include <QString>
#include <string>

#include "app/shared/Style.h"
#include "remote/Site.h"

namespace corvane {

/// What a window on this directory, raw bytes, is called.
[[nodiscard]] QString LastName(const std::string& directory, const std::string& encoding);

/// By which a listing's look is remembered: "user@host:port".
[[nodiscard]] std::string SiteKey(const Site& site);

/// The title of a window that is about `place` on the server.
[[nodiscard]] BrowserTitle TitleFor(const Site& site, const QString& place);

/// What is said of a name that the site's encoding cannot express.
[[nodiscard]] QString MissingLetters(const QString& name, const Site& site);

[[nodiscard]] QString LogTitle(const Site& site);

}  // namespace corvane
