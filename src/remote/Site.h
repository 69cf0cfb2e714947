#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace corvane {

/// An FTP proxy, to which one logs in as "user@host". With an empty host the connection goes to the
/// server itself, and the login keeps that form.
struct Proxy {
  std::string host{};
  std::uint16_t port = 21;

  friend bool operator==(const Proxy&, const Proxy&) = default;
};

/// Where and as whom to connect, and how. The one form of a connection, from window, shortcut, tray
/// and command line to the session. A value; texts are raw bytes.
struct Site {
  std::string host{};
  std::uint16_t port = 21;
  std::string user{};
  std::string password{};
  std::string path{};  ///< the directory or file to begin with; empty where the server decides
  bool passive = false;
  std::optional<Proxy> proxy{};

  friend bool operator==(const Site&, const Site&) = default;
};

}  // namespace corvane
