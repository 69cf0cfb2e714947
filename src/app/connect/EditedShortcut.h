#pragma once

#include <optional>

#include "sites/SecretStore.h"
#include "sites/Shortcut.h"

namespace corvane {

/// A shortcut that is to be saved. A kept password whose field stayed empty is the one that is kept
/// already.
struct EditedShortcut {
  Shortcut shortcut;
  std::optional<SecretKey> keptAs{};  ///< where its password was kept before it was edited
};

}  // namespace corvane
