#pragma once

#include "remote/Outcome.h"

namespace corvane {

/// Whether something that did not end as Done may do so another time: nothing speaks against the
/// file itself.
[[nodiscard]] inline bool MayPass(const Outcome& outcome) {
  using Kind = Outcome::Kind;
  return outcome.kind == Kind::Lost || outcome.kind == Kind::Busy ||
         outcome.kind == Kind::Cancelled;
}

}  // namespace corvane
