#pragma once

#include <atomic>
#include <cstdint>

#include "remote/RemoteSession.h"
#include "util/Digest.h"
#include "util/LocalFile.h"

namespace corvane {

/// So many bytes of a file's end are compared before it is gone on with.
inline constexpr std::int64_t kTail = std::int64_t{64} * 1024;

/// Whether `data` holds, from where it begins up to `end`, what the local file holds there. The
/// bytes are read off `data`; a failure to read them is returned.
Outcome SameTail(const LocalFile& file, RemoteFile& data, std::int64_t end, bool& same);

/// Adds the local file's first `end` bytes to a checksum, which is of the whole file; false where
/// they cannot be read, or once `cancelled` is true.
[[nodiscard]] bool AddBeginning(const LocalFile& file, std::int64_t end, Digest& digest,
                                const std::atomic<bool>& cancelled);

}  // namespace corvane
