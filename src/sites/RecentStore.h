#pragma once

#include <cstdint>
#include <vector>

#include "kit/Text.h"
#include "sites/Shortcut.h"

namespace corvane {

/// The connections that came about lately, newest first: the set "recent" of this user. No password
/// is among them. GUI thread.
class RecentStore {
 public:
  static constexpr std::size_t kMost = 20;

  struct Connection {
    Site site;              ///< an anonymous login without user; never a password or a proxy
    std::int64_t when = 0;  ///< seconds since 1970
  };

  [[nodiscard]] static std::vector<Connection> Read();
  /// Puts `site` first, in place of what goes to the same directory as the same user. Returns why
  /// it could not be stored, an empty text when it was.
  static Text Add(const Site& site, std::int64_t when);
  static Text Forget();

  /// The one of `shortcuts` that leads to the same server as the same user, to the same directory
  /// if there is such a one; null without any.
  [[nodiscard]] static const Shortcut* ShortcutOf(const Site& site,
                                                  const std::vector<Shortcut>& shortcuts);
};

}  // namespace corvane
