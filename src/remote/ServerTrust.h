#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "util/Certificate.h"

namespace corvane {

/// A certificate that the user has trusted.
struct KnownCertificate {
  Certificate certificate{};
  std::int64_t since = 0;  ///< seconds since 1970
};

/// What is known of a server from earlier connections.
struct KnownServer {
  std::optional<KnownCertificate> trusted{};  ///< the certificate that the user trusts
  bool wasEncrypted = false;                  ///< it has been spoken to encrypted
  bool mayBePlain = false;                    ///< the user lets a password go there unencrypted
};

/// Remembers servers, each by host and port. Any thread; blocks on the disk for a moment. Nothing
/// throws: what cannot be kept on the disk is kept as long as the program runs.
class ServerTrust {
 public:
  virtual ~ServerTrust() = default;

  [[nodiscard]] virtual KnownServer Find(const std::string& host, std::uint16_t port) = 0;
  /// Trusts a certificate, in place of the one before: `always`, or until the program ends.
  virtual void Trust(const std::string& host, std::uint16_t port, const Certificate& certificate,
                     bool always) = 0;
  virtual void NoteEncrypted(const std::string& host, std::uint16_t port) = 0;
  /// Lets passwords go unencrypted, and forgets that the server was ever encrypted: `always`, or
  /// until the program ends.
  virtual void AllowPlain(const std::string& host, std::uint16_t port, bool always) = 0;
};

}  // namespace corvane
