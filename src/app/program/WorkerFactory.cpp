#include "app/program/WorkerFactory.h"

#include <utility>

#include "ftp/MFtp.h"
#include "workers/ControlLooper.h"
#include "workers/FileTransfer.h"

namespace corvane {

WorkerFactory WorkerFactory::Real() {
  WorkerFactory factory;
  factory.looper = [](const Site& to, std::shared_ptr<BrowserUi> window) {
    return std::make_shared<ControlLooper>(to.host, to.port, to.user, to.password, to.path,
                                           to.passive, std::move(window));
  };
  factory.transfer = [](const Site& to, std::shared_ptr<TransferUi> row,
                        transferStruct description) {
    description.engine =
        std::make_shared<MFtp>(to.host, to.port, to.user, to.password, to.passive, row);
    return std::make_shared<FileTransfer>(std::move(row), std::move(description), false);
  };
  factory.sameConnection = [](const std::shared_ptr<Looper>& whose, std::shared_ptr<TransferUi> row,
                              transferStruct description) {
    description.engine = std::static_pointer_cast<ControlLooper>(whose)->Engine();
    return std::make_shared<FileTransfer>(std::move(row), std::move(description), true);
  };
  return factory;
}

}  // namespace corvane
