#pragma once

#include "queue/SpeedLimit.h"

namespace corvane {

/// How fast all transfers together may be, each way.
struct TransferSpeed {
  SpeedLimit down;
  SpeedLimit up;
};

}  // namespace corvane
