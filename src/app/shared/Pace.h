#pragma once

#include <QString>
#include <cstdint>

namespace corvane {

/// "1.8 MB/s, 25 s left"; without what is not known. `rate` is bytes in a second, `left` bytes, -1
/// when not known. In the user's locale. GUI thread.
[[nodiscard]] QString PaceText(double rate, std::int64_t left);

}  // namespace corvane
