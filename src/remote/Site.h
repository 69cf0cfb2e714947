#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace corvane {

/// How the way to a server is protected (RFC 4217).
enum class Security : std::uint8_t {
  Automatic = 0,  ///< encrypted where the server offers it
  Required = 1,   ///< encrypted, or not at all
  Implicit = 2,   ///< encrypted from the first byte on, on a port of its own
  Plain = 3,      ///< never encrypted
};

/// The port that a server serves where nobody names another.
[[nodiscard]] constexpr std::uint16_t UsualPort(Security security) {
  return security == Security::Implicit ? 990 : 21;
}

/// What stands between this machine and a server.
struct Proxy {
  enum class Kind : std::uint8_t {
    Ftp = 0,     ///< speaks FTP itself: one logs in to it as "user@host". With an empty host the
                 ///< connection goes to the server, and the login keeps that form.
    Socks5 = 1,  ///< RFC 1928; it looks names up
    Http = 2,    ///< CONNECT, RFC 9110; it looks names up
  };

  std::string host{};
  std::uint16_t port = 21;
  Kind kind = Kind::Ftp;
  std::string user{};  ///< to whom it lets this user in; empty where it asks for nobody
  std::string password{};
  bool kept = false;  ///< the password stands in the secret store

  friend bool operator==(const Proxy&, const Proxy&) = default;
};

/// Where and as whom to connect, and how. The one form of a connection, from window, shortcut, tray
/// and command line to the session. A value; texts are raw bytes.
struct Site {
  static constexpr std::int32_t kMostConnections = 8;  ///< of one transfer

  std::string host{};
  std::uint16_t port = 21;
  std::string user{};
  std::string password{};
  std::string path{};  ///< the directory or file to begin with; empty where the server decides
  bool passive = false;
  std::optional<Proxy> proxy{};
  Security security = Security::Automatic;
  std::string encoding{};           ///< of names that are no UTF-8, as iconv calls it; or empty
  std::string clientCertificate{};  ///< the path of a PEM or PKCS#12 file; empty without one
  bool asksPassword = false;        ///< the password is asked for each time and kept nowhere
  bool keptPassword = false;        ///< the password stands in the secret store
  bool warnsOfPlain = false;        ///< the user is asked before a password goes unencrypted
  std::int32_t keepAlive = 0;       ///< seconds between signs of life while idle; 0 for none
  std::int32_t connections = 0;     ///< at most so many for one transfer; 0 as the settings say

  friend bool operator==(const Site&, const Site&) = default;
};

}  // namespace corvane
