#pragma once

#include "remote/Site.h"
#include "util/Url.h"

namespace corvane {

/// Where a URL leads; what it does not name is empty, the port 21.
[[nodiscard]] inline Site SiteOf(const Url& url) {
  return {.host = url.host,
          .port = url.port.value_or(21),
          .user = url.user,
          .password = url.password,
          .path = url.path};
}

}  // namespace corvane
