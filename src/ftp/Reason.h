#pragma once

#include "kit/Text.h"

namespace corvane {

struct NLException;

/// The part of an exception's message that a user understands: the system's own words, or plainer
/// ones where it speaks of encryption.
[[nodiscard]] Text Reason(const NLException& error);

}  // namespace corvane
