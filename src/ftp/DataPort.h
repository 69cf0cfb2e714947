#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "net/NLAddress.h"

namespace corvane {

/// The port in a PASV reply (RFC 959, 4.1.2): the last two of six numbers, each a byte, wherever
/// they stand behind the code. Nothing where there is none.
[[nodiscard]] std::optional<std::uint16_t> PassivePort(std::string_view reply);

/// The port in an EPSV reply (RFC 2428, 3): "|||port|" with whatever delimiter, wherever it stands
/// behind the code. Nothing where there is none.
[[nodiscard]] std::optional<std::uint16_t> ExtendedPort(std::string_view reply);

/// The command that announces an IPv4 address: PORT (RFC 959, 4.1.2).
[[nodiscard]] std::string PortCommand(const NLAddress& address);

/// The command that announces an address of either family: EPRT (RFC 2428, 2).
[[nodiscard]] std::string ExtendedPortCommand(const NLAddress& address);

}  // namespace corvane
