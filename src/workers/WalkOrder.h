#pragma once

#include <string>
#include <variant>
#include <vector>

#include "workers/RightsChanger.h"
#include "workers/TreeFinder.h"

namespace corvane {

/// Count what these directories hold.
struct CountOrder {
  std::string directory;  ///< in which they stand
  std::vector<std::string> names;
};

/// Find entries below a directory.
struct FindOrder {
  std::string directory;
  FindRule rule;
};

/// What a walk is to do: RightsChanger, TreeCounter or TreeFinder carries it out. A value.
using WalkOrder = std::variant<RightsOrder, CountOrder, FindOrder>;

}  // namespace corvane
