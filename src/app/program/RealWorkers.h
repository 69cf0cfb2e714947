#pragma once

#include "app/shared/WorkerFactory.h"

namespace corvane {

/// The workers that talk to real servers.
[[nodiscard]] WorkerFactory RealWorkers();

}  // namespace corvane
