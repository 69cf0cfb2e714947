#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace corvane {

/// What a server's certificate (RFC 5280) says of itself, and what does not fit. A value.
struct Certificate {
  /// Bits of `problems`.
  enum Problem : std::uint32_t {
    kSelfSigned = 1,
    kUnknownIssuer = 2,  ///< signed by nobody whom this machine trusts
    kExpired = 4,
    kNotYetValid = 8,
    kOtherHost = 16,  ///< made out to other names
    kWeak = 32,       ///< a key or signature that is easily forged
    kOther = 64,
  };

  std::string name{};                ///< to whom it was made out
  std::vector<std::string> names{};  ///< the hosts and addresses that it is good for
  std::string issuer{};              ///< who says so
  std::int64_t notBefore = 0;        ///< seconds since 1970, UTC
  std::int64_t notAfter = 0;
  std::string sha256{};        ///< its fingerprint, 32 bytes
  std::uint32_t problems = 0;  ///< none where this machine trusts it for the host

  friend bool operator==(const Certificate&, const Certificate&) = default;
};

/// "5E:1C:9A" for the bytes of a fingerprint.
[[nodiscard]] std::string FingerprintText(std::string_view bytes);

}  // namespace corvane
