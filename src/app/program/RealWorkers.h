#pragma once

#include <memory>

#include "app/shared/WorkerFactory.h"
#include "remote/ServerTrust.h"

namespace corvane {

/// The workers that talk to real servers, and to `trust` about them.
[[nodiscard]] WorkerFactory RealWorkers(const std::shared_ptr<ServerTrust>& trust);

}  // namespace corvane
