#pragma once

#include <functional>
#include <memory>

#include "kit/Looper.h"
#include "queue/JobBoard.h"
#include "queue/TransferSpeed.h"
#include "queue/transferStruct.h"
#include "remote/BrowserUi.h"
#include "remote/Site.h"
#include "remote/TransferUi.h"
#include "workers/MThread.h"

namespace corvane {

/// Makes what works behind the windows; nothing made has been started. GUI thread.
struct WorkerFactory {
  /// The looper of one browser window.
  std::function<std::shared_ptr<Looper>(const Site&, std::shared_ptr<BrowserUi>)> looper;
  /// A transfer on connections of its own, which carries out the jobs of that board.
  std::function<std::shared_ptr<MThread>(std::shared_ptr<TransferUi>, transferStruct,
                                         std::shared_ptr<JobBoard>)>
      transfer;
  /// A transfer on the connection of that looper, which this factory made for that window.
  std::function<std::shared_ptr<MThread>(const std::shared_ptr<Looper>&, std::shared_ptr<BrowserUi>,
                                         std::shared_ptr<TransferUi>, transferStruct,
                                         std::shared_ptr<JobBoard>)>
      sameConnection;
  /// What all transfers share; null where their speed cannot be limited.
  std::shared_ptr<TransferSpeed> speed{};
};

}  // namespace corvane
