#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "workers/TreeWalk.h"

namespace corvane {

/// Counts what directories hold, with all that is below them: what comes of it stands in the
/// progress.
class TreeCounter final : public TreeWalk {
 public:
  /// Those of `names` in `directory`.
  TreeCounter(Ways ways, std::shared_ptr<WalkUi> ui, std::string directory,
              std::vector<std::string> names)
      : TreeWalk(std::move(ways), std::move(ui)), names_(std::move(names)) {
    base = std::move(directory);
  }

 protected:
  Outcome First(RemoteSession& session) override;
  Outcome Take(RemoteSession& /*session*/, const Directory& /*directory*/,
               const std::vector<RemoteEntry>& /*entries*/) override {
    return {};
  }

 private:
  const std::vector<std::string> names_;
};

}  // namespace corvane
