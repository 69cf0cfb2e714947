#pragma once

#include <functional>

#include "workers/TransferPlan.h"

namespace corvane {

class MWindow;

/// What a browser window asks about entries that are there already where a transfer would put its
/// own: once for all entries of an action. GUI thread.
class ExistingEntries {
 public:
  /// Gets the plan with the policies that the user chose; not called when the user cancels.
  using Then = std::function<void(TransferPlan plan)>;

  static void SettleDownload(MWindow& window, TransferPlan plan, const Then& then);
  /// What is there already has a `there` that is not Nothing.
  static void SettleUpload(MWindow& window, TransferPlan plan, const Then& then);
};

}  // namespace corvane
