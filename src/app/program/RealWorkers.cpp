#include "app/program/RealWorkers.h"

#include <utility>

#include "ftp/MFtp.h"
#include "workers/ControlLooper.h"
#include "workers/FileTransfer.h"
#include "workers/SessionPool.h"

namespace corvane {

WorkerFactory RealWorkers(const std::shared_ptr<ServerTrust>& trust,
                          const std::shared_ptr<TransferSpeed>& speed) {
  WorkerFactory factory;
  factory.speed = speed;
  const auto pool = std::make_shared<SessionPool>(
      [trust](const Site& site, std::shared_ptr<OwnerUi> owner, std::shared_ptr<Habits> habits) {
        return std::make_shared<MFtp>(site, std::move(owner), trust, std::move(habits));
      });
  factory.looper = [trust](const Site& site, std::shared_ptr<BrowserUi> window) {
    auto session = std::make_shared<MFtp>(site, window, trust);
    return std::make_shared<ControlLooper>(site, std::move(session), std::move(window));
  };
  factory.transfer = [pool, speed](std::shared_ptr<TransferUi> row, transferStruct description,
                                   std::shared_ptr<JobBoard> jobs) {
    return std::make_shared<FileTransfer>(std::move(row), std::move(description), std::move(jobs),
                                          pool, speed);
  };
  factory.sameConnection = [speed](const std::shared_ptr<Looper>& whose,
                                   std::shared_ptr<BrowserUi> window,
                                   std::shared_ptr<TransferUi> row, transferStruct description,
                                   std::shared_ptr<JobBoard> jobs) {
    auto session = std::static_pointer_cast<ControlLooper>(whose)->Session();
    return std::make_shared<FileTransfer>(std::move(row), std::move(description), std::move(jobs),
                                          std::move(session), std::move(window), speed);
  };
  return factory;
}

}  // namespace corvane
