#pragma once

#include <functional>

#include "workers/TransferPlan.h"

namespace corvane {

class MWindow;

/// The alerts of the classic style about what is there already: one for all entries of an action.
/// GUI thread.
class ExistingAlerts {
 public:
  using Then = std::function<void(TransferPlan plan)>;

  /// `plan` has entries that meet something; of a single one that can be replaced. `then` is not
  /// called when the user cancels.
  static void SettleDownload(MWindow& window, TransferPlan plan, const Then& then);
  static void SettleUpload(MWindow& window, TransferPlan plan, const Then& then);
};

}  // namespace corvane
