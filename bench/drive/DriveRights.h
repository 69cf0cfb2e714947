#pragma once

#include "DriveOptions.h"

namespace corvane::drive {

/// Gives the entry, and with "/" at its path's end all that is in it, the permissions in
/// `options.local`, on a session of its own and on others. False where that was not done.
[[nodiscard]] bool ChangeRights(const Options& options);

}  // namespace corvane::drive
