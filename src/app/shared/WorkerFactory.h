#pragma once

#include <functional>
#include <memory>

#include "kit/Looper.h"
#include "queue/JobBoard.h"
#include "queue/TransferSpeed.h"
#include "queue/transferStruct.h"
#include "remote/BrowserUi.h"
#include "remote/Diagnosis.h"
#include "remote/Site.h"
#include "remote/TransferUi.h"
#include "workers/MThread.h"
#include "workers/WalkOrder.h"
#include "workers/WalkUi.h"

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
  /// Ends what transfers keep of connections that none of them uses now; null where they keep
  /// nothing.
  std::function<void()> endKept{};
  /// What looks at a connection step by step; null where nothing can.
  std::function<std::shared_ptr<MThread>(const Site&, std::shared_ptr<DiagnosisUi>)> doctor{};
  /// A walk for that window, whose looper this factory made: on its connection and on others, of
  /// which there are to be so many at most.
  std::function<std::shared_ptr<MThread>(const std::shared_ptr<Looper>&, std::shared_ptr<BrowserUi>,
                                         const Site&, int connections, const WalkOrder&,
                                         std::shared_ptr<WalkUi>)>
      walk;
  /// What all transfers share; null where their speed cannot be limited.
  std::shared_ptr<TransferSpeed> speed{};
};

}  // namespace corvane
