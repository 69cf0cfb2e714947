#pragma once

#include <functional>
#include <optional>

#include "workers/TransferPlan.h"

namespace corvane {

class MWindow;

/// Settles what becomes of entries that are there already where a transfer would put its own: as
/// the preferences say, else as the user does. GUI thread.
class ExistingEntries {
 public:
  /// Gets the settled plan; not called when the user cancels.
  using Then = std::function<void(TransferPlan plan)>;

  /// What the preferences say; nothing where the user is asked.
  [[nodiscard]] static std::optional<Policy> Preset();

  static void SettleDownload(MWindow& window, TransferPlan plan, Then then);
  static void SettleUpload(MWindow& window, TransferPlan plan, Then then);
};

}  // namespace corvane
