#include "util/LocalFolder.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace corvane {
namespace {

constexpr int kFlags = O_PATH | O_DIRECTORY | O_CLOEXEC;

struct AtPath {
  bool there = false;  // a folder stands at the path
  bool sameDevice = true;
  bool sameNumber = true;
};

// What the path leads to, beside the folder that is open. What cannot be looked at is taken for it.
AtPath Compare(int folder, const std::string& path) {
  struct stat opened {};
  struct stat named {};
  if (::fstat(folder, &opened) != 0) return {.there = true};
  if (::stat(path.c_str(), &named) != 0) return {.there = errno != ENOENT && errno != ENOTDIR};
  return {S_ISDIR(named.st_mode) != 0, opened.st_dev == named.st_dev,
          opened.st_ino == named.st_ino};
}

}  // namespace

int LocalFolder::Open(const std::string& path) {
  fd_.reset(::open(path.c_str(), kFlags));
  if (!fd_) return errno;
  path_ = path;
  steady_ = Compare(fd_.get(), path).sameNumber;
  return 0;
}

bool LocalFolder::IsGone() const {
  const AtPath look = Compare(fd_.get(), path_);
  return !look.there || !look.sameDevice || (steady_ && !look.sameNumber);
}

int LocalFolder::Enter(const LocalFolder& above, std::string_view name) {
  fd_.reset();
  if (!IsSafeLocalName(name)) return EINVAL;
  const std::string entry(name);
  if (::mkdirat(above.Fd(), entry.c_str(), 0777) != 0 && errno != EEXIST) return errno;
  fd_.reset(OpenBeneath(above.Fd(), entry, kFlags));
  return fd_ ? 0 : errno;
}

int LocalFolder::SyncAll() const {
  const UniqueFd opened(::openat(fd_.get(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (opened) return ::syncfs(opened.get()) == 0 ? 0 : errno;
  // A folder may let its owner write into it and not read it.
  if (errno != EACCES) return errno;
  ::sync();
  return 0;
}

int LocalFolder::Look(const std::string& name, std::optional<Entry>& file) const {
  file.reset();
  struct stat status {};
  if (::fstatat(fd_.get(), name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) return errno;
  if (S_ISREG(status.st_mode)) file = Entry{status.st_size, status.st_mtime};
  return 0;
}

int LocalFolder::SetTime(std::int64_t seconds) const {
  const timespec times[] = {{0, UTIME_OMIT}, {seconds, 0}};
  return ::utimensat(fd_.get(), ".", times, 0) == 0 ? 0 : errno;
}

}  // namespace corvane
