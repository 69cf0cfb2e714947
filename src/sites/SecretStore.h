#pragma once

#include <compare>
#include <cstdint>
#include <string>
#include <tuple>

#include "remote/Site.h"

namespace corvane {

/// Whose password it is: that of a login to a server over FTP.
struct SecretKey {
  std::string host{};
  std::uint16_t port = 21;
  std::string user{};

  friend bool operator==(const SecretKey&, const SecretKey&) = default;
  friend bool operator<(const SecretKey& one, const SecretKey& other) {
    return std::tie(one.host, one.port, one.user) < std::tie(other.host, other.port, other.user);
  }
};

[[nodiscard]] inline SecretKey KeyOf(const Proxy& proxy) {
  return {.host = proxy.host, .port = proxy.port, .user = proxy.user};
}
[[nodiscard]] inline SecretKey KeyOf(const Site& site) {
  return {site.host, site.port, site.user};
}

/// Whether the site has a password that is worth keeping: an anonymous login has none.
[[nodiscard]] inline bool IsSecret(const Site& site) {
  return !site.password.empty() && !site.user.empty() && site.user != "anonymous";
}

/// Where the desktop keeps passwords, one for each key. Any thread; every call blocks until the
/// store is through, and never longer than the store's own deadlines: seconds, or a minute where
/// the user may be asked to unlock it. No call throws.
class SecretStore {
 public:
  enum class Result : std::uint8_t {
    Done,       ///< found, saved or removed
    Missing,    ///< there is none
    Locked,     ///< the store is locked, and the user was not asked or did not unlock it
    NoService,  ///< no such store runs
    Failed,
  };
  /// Whether the store may ask the user to unlock it: only when the user has just done something.
  enum class Prompt : std::uint8_t { Never, Allowed };

  virtual ~SecretStore() = default;

  /// `secret` is set where the result is Done.
  [[nodiscard]] virtual Result Lookup(const SecretKey& key, Prompt prompt, std::string& secret) = 0;
  /// Keeps a secret in place of the one before.
  [[nodiscard]] virtual Result Save(const SecretKey& key, const std::string& secret,
                                    Prompt prompt) = 0;
  /// Missing where there was none.
  [[nodiscard]] virtual Result Remove(const SecretKey& key, Prompt prompt) = 0;
};

}  // namespace corvane
