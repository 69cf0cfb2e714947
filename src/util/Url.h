#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace corvane {

/// A URL as RFC 3986 has it: ftp://[user[:password]@]host[:port]/path, an IPv6 address as host in
/// brackets, percent escapes in every part. The one form for command line, clipboard, drop and
/// other programs. The texts are raw bytes, without escapes; one that is not named is empty.
struct Url {
  enum class Scheme : std::uint8_t {
    Ftp,    ///< "ftp", which says nothing of encryption; also where none is named
    Ftpes,  ///< encryption is asked for on the usual port, and required (RFC 4217)
    Ftps,   ///< encrypted from the first byte on, on a port of its own
  };

  std::string user{};
  std::string password{};
  std::string host{};  ///< without brackets
  std::optional<std::uint16_t> port{};
  std::string
      path{};  ///< begins with "/"; empty too where it is "/" alone, the server's own choice
  Scheme scheme = Scheme::Ftp;

  /// The port where none is named.
  [[nodiscard]] std::uint16_t UsualPort() const { return scheme == Scheme::Ftps ? 990 : 21; }

  /// Whether the text claims to be such a URL, readable or not.
  [[nodiscard]] static bool IsMeant(std::string_view text);
  /// Reads `text`, blanks and line ends around it ignored. Nothing where it is no such URL, has no
  /// host, a port that is none from 1 to 65535, or a broken escape. The user ends at the first ":",
  /// the login at the last "@" before the first "/". "?" and "#" belong to the path: FTP has
  /// neither queries nor fragments.
  [[nodiscard]] static std::optional<Url> Read(std::string_view text);
  /// Reads what a user wrote where an address is asked for: such a URL, or one that leaves the
  /// scheme out. A host alone is taken as it stands, an IPv6 address without brackets too. Nothing
  /// for what Read refuses, and for a URL of another kind.
  [[nodiscard]] static std::optional<Url> ReadAddress(std::string_view text);

  /// The text from which Read gets scheme, host, port and path again. The port stands there when
  /// it is not the usual one; user and password never do.
  [[nodiscard]] std::string Written() const;

  friend bool operator==(const Url&, const Url&) = default;
};

}  // namespace corvane
