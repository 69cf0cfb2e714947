#include "util/Beneath.h"

#include <fcntl.h>
#include <linux/openat2.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>

#include "util/UniqueFd.h"

namespace corvane {

bool IsSafeLocalName(std::string_view name) {
  return !name.empty() && name != "." && name != ".." &&
         name.find_first_of(std::string_view("/\0", 2)) == std::string_view::npos;
}

int OpenBeneath(int folder, const std::string& name, int flags, mode_t mode) {
  open_how how{};
  how.flags = static_cast<unsigned>(flags | O_CLOEXEC);
  how.mode = mode;
  how.resolve = RESOLVE_BENEATH | RESOLVE_NO_SYMLINKS;
  // EAGAIN also says that something was renamed meanwhile.
  for (int attempt = 0; attempt < 3; ++attempt) {
    const long fd = ::syscall(SYS_openat2, folder, name.c_str(), &how, sizeof how);
    if (fd >= 0) return static_cast<int>(fd);
    if (errno != EAGAIN) break;
  }
  // Kernels before 5.6 do not know the call, and a sandbox may forbid it.
  if (errno != ENOSYS && errno != EPERM) return -1;
  if (!IsSafeLocalName(name)) {
    errno = EXDEV;
    return -1;
  }
  return ::openat(folder, name.c_str(), flags | O_NOFOLLOW | O_CLOEXEC, mode);
}

bool IsNamed(int folder, const std::string& name, int fd) {
  struct stat ours {};
  struct stat named {};
  return ::fstat(fd, &ours) == 0 &&
         ::fstatat(folder, name.c_str(), &named, AT_SYMLINK_NOFOLLOW) == 0 &&
         ours.st_dev == named.st_dev && ours.st_ino == named.st_ino;
}

int LockEntry(int folder, const std::string& name, int fd) {
  if (::flock(fd, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) return EWOULDBLOCK;
  // Whoever had the lock may have removed or replaced the file before letting go.
  return IsNamed(folder, name, fd) ? 0 : EWOULDBLOCK;
}

int SyncEntries(int folder) {
  const UniqueFd opened(::openat(folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  // A folder may let its owner write into it and not read it.
  if (!opened && errno == EACCES) {
    ::sync();
    return 0;
  }
  if (!opened) return errno;
  // Some file systems cannot sync a directory and say EINVAL.
  return ::fsync(opened.get()) == 0 || errno == EINVAL ? 0 : errno;
}

}  // namespace corvane
