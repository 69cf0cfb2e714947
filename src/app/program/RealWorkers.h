#pragma once

#include <memory>

#include "app/shared/WorkerFactory.h"
#include "queue/TransferSpeed.h"
#include "remote/ServerTrust.h"

namespace corvane {

/// The workers that talk to real servers, and to `trust` about them, no faster than `speed` lets
/// them, which may be null.
[[nodiscard]] WorkerFactory RealWorkers(const std::shared_ptr<ServerTrust>& trust,
                                        const std::shared_ptr<TransferSpeed>& speed = {});

}  // namespace corvane
