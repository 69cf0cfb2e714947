#pragma once

#include <string>

#include "util/Certificate.h"

namespace corvane {

/// How a connection that stands is protected. A value.
struct Protection {
  bool encrypted = false;
  std::string protocol{};     ///< "TLS 1.3"
  std::string cipher{};       ///< "TLS_AES_256_GCM_SHA384"
  Certificate certificate{};  ///< the server's

  friend bool operator==(const Protection&, const Protection&) = default;
};

}  // namespace corvane
