#pragma once

#include <functional>
#include <memory>

#include "ftp/BrowserUi.h"
#include "ftp/TransferUi.h"
#include "kit/Looper.h"
#include "remote/Site.h"
#include "workers/MThread.h"
#include "workers/transferStruct.h"

namespace corvane {

/// Makes what works behind the windows; nothing made has been started. GUI thread.
struct WorkerFactory {
  /// The looper of one browser window.
  std::function<std::shared_ptr<Looper>(const Site&, std::shared_ptr<BrowserUi>)> looper;
  /// A transfer on a connection of its own, which is added to the description.
  std::function<std::shared_ptr<MThread>(const Site&, std::shared_ptr<TransferUi>, transferStruct)>
      transfer;
  /// A transfer on the connection of that looper, which this factory made.
  std::function<std::shared_ptr<MThread>(const std::shared_ptr<Looper>&,
                                         std::shared_ptr<TransferUi>, transferStruct)>
      sameConnection;

  /// Those that talk to real servers.
  [[nodiscard]] static WorkerFactory Real();
};

}  // namespace corvane
