#pragma once

#include <sys/types.h>

#include <string>
#include <string_view>

namespace corvane {

/// True when a name that came from a server may name an entry in a local folder: not empty, not
/// "." or "..", no "/" and no NUL.
[[nodiscard]] bool IsSafeLocalName(std::string_view name);

/// Opens the entry `name` of the directory `folder` as openat(2) does, but follows no symbolic link
/// (ELOOP) and never leaves the directory. Returns the descriptor, or -1 with errno set.
[[nodiscard]] int OpenBeneath(int folder, const std::string& name, int flags, mode_t mode = 0);

/// Whether `name`, seen from the directory `folder`, is the open file itself and not a link to it.
[[nodiscard]] bool IsNamed(int folder, const std::string& name, int fd);

/// Locks an open file for one writer. EWOULDBLOCK when somebody else has the lock or `name` has
/// come to mean another file; where the file system knows no locks, only the name is looked at.
[[nodiscard]] int LockEntry(int folder, const std::string& name, int fd);

/// Writes the entries of the directory to the disk. Returns 0 or an errno number.
[[nodiscard]] int SyncEntries(int folder);

}  // namespace corvane
