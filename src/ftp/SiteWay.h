#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>

#include "net/Tunnel.h"
#include "remote/Site.h"

namespace corvane {

/// The proxy that the connection goes to; null where it goes to the server.
[[nodiscard]] const Proxy* ProxyInFront(const Site& site);

/// The way through that proxy; nothing for one that speaks FTP itself.
[[nodiscard]] std::optional<Tunnel> TunnelOf(const Site& site);

/// The machine that is spoken to: a proxy that speaks FTP stands in for the server.
[[nodiscard]] std::pair<const std::string&, std::uint16_t> PeerOf(const Site& site);

/// Who logs in: such a proxy is told the server too.
[[nodiscard]] std::string LoginName(const Site& site);

}  // namespace corvane
