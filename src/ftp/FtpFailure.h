#pragma once

#include "remote/Outcome.h"

namespace corvane {

/// What ends an operation at once: the control connection is gone, the user has cancelled, or a
/// command cannot be sent. Thrown and caught within ftp/.
struct FtpFailure {
  Outcome outcome;
};

}  // namespace corvane
