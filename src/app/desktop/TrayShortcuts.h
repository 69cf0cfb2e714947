#pragma once

#include <optional>
#include <string>
#include <vector>

#include "kit/Message.h"

namespace corvane {

/// A shortcut as the tray knows it.
struct TrayShortcut {
  std::string name;
  std::string folder;  ///< the path of the folder in whose menu it stands; "" at the top
  Message open;        ///< the 'OPNC' for it, without its password but with "saved"
};

/// Reads the shortcuts in a process of its own, which ends at once and takes along what their lines
/// hold of passwords. Nothing where they cannot be read within two seconds.
[[nodiscard]] std::optional<std::vector<TrayShortcut>> ReadForTray();

}  // namespace corvane
