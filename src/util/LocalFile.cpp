#include "util/LocalFile.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>

namespace corvane {
namespace {

// Why an entry of this kind cannot be a transfer's file, or 0.
int RefusalOf(const struct stat& status) {
  if (S_ISREG(status.st_mode)) return 0;
  if (S_ISDIR(status.st_mode)) return EISDIR;
  if (S_ISLNK(status.st_mode)) return ELOOP;
  return ENOTSUP;
}

// O_NONBLOCK matters only for what is about to be refused: opening a FIFO must not wait.
constexpr int kAlways = O_CLOEXEC | O_NONBLOCK | O_NOCTTY;

// Opens an entry of `folder`, makes it where the mode says so; answers the descriptor or -1.
int OpenEntry(int folder, const char* name, LocalFile::Mode mode, bool& created) {
  const int flags = kAlways | O_NOFOLLOW;
  if (mode == LocalFile::Mode::Read) return ::openat(folder, name, O_RDONLY | flags);
  if (mode == LocalFile::Mode::Resume) return ::openat(folder, name, O_WRONLY | flags);
  // The entry may come or go between the two calls when somebody else works in the folder.
  for (int attempt = 0; attempt < 3; ++attempt) {
    int fd = ::openat(folder, name, O_WRONLY | O_CREAT | O_EXCL | flags, 0666);
    created = fd >= 0;
    if (fd >= 0 || errno != EEXIST) return fd;
    fd = ::openat(folder, name, O_WRONLY | flags);
    if (fd >= 0 || errno != ENOENT) return fd;
  }
  return -1;
}

// A write of more than this makes the kernel look for big blocks of memory, which costs more than
// the calls that it saves.
constexpr std::size_t kPiece = std::size_t{128} * 1024;

}  // namespace

bool IsNamed(int folder, const std::string& name, int fd) {
  struct stat ours {};
  struct stat named {};
  return ::fstat(fd, &ours) == 0 &&
         ::fstatat(folder, name.c_str(), &named, AT_SYMLINK_NOFOLLOW) == 0 &&
         ours.st_dev == named.st_dev && ours.st_ino == named.st_ino;
}

int LocalFile::Open(const std::string& folder, std::string_view name, Mode mode) {
  LocalFolder opened;
  const int error = opened.Open(folder);
  return error != 0 ? error : Open(opened, name, mode);
}

int LocalFile::Open(const LocalFolder& folder, std::string_view name, Mode mode) {
  *this = LocalFile();
  if (!IsSafeLocalName(name)) return EINVAL;
  const std::string entry(name);
  UniqueFd directory(::fcntl(folder.Fd(), F_DUPFD_CLOEXEC, 0));
  if (!directory) return errno;

  // Looking first keeps devices from being opened at all; looking again below is what holds.
  struct stat status {};
  if (::fstatat(directory.get(), entry.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0) {
    if (const int refusal = RefusalOf(status); refusal != 0) return refusal;
  }
  bool created = false;
  UniqueFd fd(OpenEntry(directory.get(), entry.c_str(), mode, created));
  if (!fd || ::fstat(fd.get(), &status) != 0) return errno;
  if (const int refusal = RefusalOf(status); refusal != 0) return refusal;
  if (mode != Mode::Read) {
    // One writer at a time. Whoever had the lock may have removed the file before letting go.
    if (::flock(fd.get(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) return EWOULDBLOCK;
    if (!IsNamed(directory.get(), entry, fd.get())) return EWOULDBLOCK;
  }
  if (mode == Mode::Resume && ::lseek(fd.get(), 0, SEEK_END) < 0) return errno;

  folder_ = std::move(directory);
  fd_ = std::move(fd);
  name_ = entry;
  created_ = created;
  initialSize_ = status.st_size;
  return 0;
}

int LocalFile::OpenForReading(const std::string& path) {
  *this = LocalFile();
  struct stat status {};
  if (::stat(path.c_str(), &status) != 0) return errno;
  if (const int refusal = RefusalOf(status); refusal != 0) return refusal;
  UniqueFd fd(::open(path.c_str(), O_RDONLY | kAlways));
  if (!fd || ::fstat(fd.get(), &status) != 0) return errno;
  if (const int refusal = RefusalOf(status); refusal != 0) return refusal;
  fd_ = std::move(fd);
  initialSize_ = status.st_size;
  return 0;
}

int LocalFile::Truncate(std::int64_t size) {
  struct stat status {};
  if (::fstat(fd_.get(), &status) != 0) return errno;
  // Truncating an empty file would only make some file systems flush it when it is closed.
  if (status.st_size != size && ::ftruncate(fd_.get(), size) != 0) return errno;
  return Seek(size);
}

std::int64_t LocalFile::Position() const {
  return std::max<std::int64_t>(::lseek(fd_.get(), 0, SEEK_CUR), 0);
}

int LocalFile::Seek(std::int64_t offset) {
  return ::lseek(fd_.get(), offset, SEEK_SET) < 0 ? errno : 0;
}

int LocalFile::Write(std::span<const char> bytes) {
  while (!bytes.empty()) {
    const ssize_t written = ::write(fd_.get(), bytes.data(), std::min(bytes.size(), kPiece));
    if (written < 0 && errno != EINTR) return errno;
    if (written > 0) bytes = bytes.subspan(static_cast<std::size_t>(written));
  }
  return 0;
}

int LocalFile::Read(std::span<char> buffer, std::size_t& got) {
  got = 0;
  for (;;) {
    const ssize_t count = ::read(fd_.get(), buffer.data(), buffer.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return errno;
    got = static_cast<std::size_t>(count);
    return 0;
  }
}

int LocalFile::Close() {
  folder_.reset();
  if (!fd_) return 0;
  return ::close(fd_.release()) != 0 ? errno : 0;
}

void LocalFile::Discard() {
  // Only the very file that Open made is removed, not what somebody put in its place since.
  if (created_ && folder_ && IsNamed(folder_.get(), name_, fd_.get())) {
    ::unlinkat(folder_.get(), name_.c_str(), 0);
  }
  *this = LocalFile();
}

}  // namespace corvane
