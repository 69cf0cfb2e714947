#include "app/program/RealWorkers.h"

#include <utility>

#include "ftp/MFtp.h"
#include "workers/ControlLooper.h"
#include "workers/FileTransfer.h"

namespace corvane {

WorkerFactory RealWorkers(const std::shared_ptr<ServerTrust>& trust) {
  WorkerFactory factory;
  factory.looper = [trust](const Site& site, std::shared_ptr<BrowserUi> window) {
    auto session = std::make_shared<MFtp>(site, window, trust);
    return std::make_shared<ControlLooper>(site, std::move(session), std::move(window));
  };
  factory.transfer = [trust](std::shared_ptr<TransferUi> row, transferStruct description) {
    auto session = std::make_shared<MFtp>(description.site, row, trust);
    return std::make_shared<FileTransfer>(std::move(row), std::move(description),
                                          std::move(session));
  };
  factory.sameConnection = [](const std::shared_ptr<Looper>& whose,
                              std::shared_ptr<BrowserUi> window, std::shared_ptr<TransferUi> row,
                              transferStruct description) {
    auto session = std::static_pointer_cast<ControlLooper>(whose)->Session();
    return std::make_shared<FileTransfer>(std::move(row), std::move(description),
                                          std::move(session), std::move(window));
  };
  return factory;
}

}  // namespace corvane
