#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "remote/RemoteEntry.h"
#include "workers/NamePattern.h"
#include "workers/TreeWalk.h"

namespace corvane {

/// What is looked for: all of it must hold. A value.
struct FindRule {
  NamePattern name{};
  std::string encoding{};               ///< of the site, for names that are no UTF-8
  std::optional<std::int64_t> least{};  ///< bytes; with either of these files alone are found
  std::optional<std::int64_t> most{};
  /// When it was last changed, as the user's clock shows it (a time in the server's own zone as it
  /// stands), in seconds since 1970 on that clock: from the first on, and before the second.
  std::optional<std::int64_t> from{};
  std::optional<std::int64_t> before{};
  std::optional<RemoteEntry::Kind> kind{};

  [[nodiscard]] bool Fits(const RemoteEntry& entry) const;
};

/// Finds entries below a directory. Hands them over a few hundred at a time.
class TreeFinder final : public TreeWalk {
 public:
  static constexpr std::int64_t kMostFound = 100'000;

  TreeFinder(Ways ways, std::shared_ptr<WalkUi> ui, std::string directory, FindRule rule)
      : TreeWalk(std::move(ways), std::move(ui)), rule_(std::move(rule)) {
    base = std::move(directory);
  }

  std::int64_t mostFound = kMostFound;  ///< before Run

 protected:
  Outcome First(RemoteSession& session) override;
  Outcome Take(RemoteSession& session, const Directory& directory,
               const std::vector<RemoteEntry>& entries) override;

 private:
  const FindRule rule_;
};

}  // namespace corvane
