#pragma once

#include <algorithm>

namespace corvane {

/// How long the other side is waited for while it is silent, in milliseconds each.
struct Waits {
  /// Twenty days, which no wait lasts, and which any clock and any call of the system takes.
  static constexpr long kNoLimit = 20L * 24 * 60 * 60 * 1000;

  long connect = 20'000;    ///< for each address
  long handshake = 20'000;  ///< before a connection is encrypted
  long reply = 60'000;      ///< to a command, or for the rest of a reply
  long stall = 60'000;      ///< for data to move on

  /// One of each: a server that is slow, and no worse, is silent for less.
  [[nodiscard]] constexpr long Together() const {
    return std::min(kNoLimit, connect + handshake + reply + stall);
  }

  [[nodiscard]] static constexpr Waits All(long milliseconds) {
    return {milliseconds, milliseconds, milliseconds, milliseconds};
  }
};

}  // namespace corvane
