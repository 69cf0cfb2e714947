#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "kit/Text.h"
#include "net/NLException.h"

namespace corvane {

class Stream;

/// Why a proxy leads nowhere.
struct TunnelFailure : NLException {
  explicit TunnelFailure(corvane::Text sentence, bool isPortClosed = false);

  corvane::Text why;  ///< the message as a sentence for the user
  bool portClosed;    ///< the server was reached, and nothing serves the port
};

/// The way to a server through a proxy that passes bytes on: SOCKS 5 (RFC 1928 and 1929) or HTTP
/// (CONNECT, RFC 9110, 9.3.6). The proxy looks names up. A value.
struct Tunnel {
  enum class Kind : std::uint8_t { socks5, http };

  Kind kind = Kind::socks5;
  std::string user{};  ///< empty where the proxy asks for nobody
  std::string password{};
  std::string host{};  ///< the server: a name, an international one in UTF-8, or an address

  /// Has the proxy at the other end of `stream` connect to a port of the server. From then on the
  /// stream is the server's, and not a byte of it has been taken. Asks `goOn` a few times a second;
  /// false when that said no. Throws TunnelFailure where the proxy refuses, says what is not
  /// understood, or has not let through within `limit` milliseconds, and what the stream and `goOn`
  /// throw.
  [[nodiscard]] bool open(Stream& stream, std::uint16_t port, long limit,
                          const std::function<bool()>& goOn) const;
};

}  // namespace corvane
