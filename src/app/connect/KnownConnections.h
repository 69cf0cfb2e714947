#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "sites/Shortcut.h"

namespace corvane {

/// A connection that the user made or saved before. One that has a shortcut has its label and its
/// password.
struct KnownConnection {
  Shortcut connection;
  std::int64_t when = 0;  ///< seconds since 1970 when it last came about; 0 for a shortcut alone
};

/// Those that came about lately, newest first, then the other shortcuts. Reads the stores. GUI
/// thread.
[[nodiscard]] std::vector<KnownConnection> KnownConnections();

/// Where a connection goes: "anna@www.example.net/htdocs", the user left out for an anonymous
/// login, the port for the usual one. Raw bytes.
[[nodiscard]] std::string PlaceOf(const Site& site);

}  // namespace corvane
