#include "util/LocalFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

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

// A write of more than this makes the kernel look for big blocks of memory, which costs more than
// the calls that it saves.
constexpr std::size_t kPiece = std::size_t{128} * 1024;

// So much is written between two calls that start the write-back.
constexpr std::int64_t kWriteBackStep = std::int64_t{8} << 20;

}  // namespace

int LocalFile::Open(const LocalFolder& folder, std::string_view name, Mode mode) {
  Discard();
  if (!IsSafeLocalName(name)) return EINVAL;
  name_ = name;
  folder_.reset(::fcntl(folder.Fd(), F_DUPFD_CLOEXEC, 0));
  if (!folder_) return errno;
  const int error = OpenEntry(mode);
  if (error != 0) Discard();
  return error;
}

int LocalFile::OpenEntry(Mode mode) {
  if (mode == Mode::Read) return OpenPresent(O_RDONLY);
  writes_ = true;
  if (mode == Mode::CreateNew) return OpenNew();
  if (mode == Mode::Replace || mode == Mode::GoOn) return OpenPart(mode == Mode::GoOn);
  if (const int error = OpenPresent(O_RDWR); error != 0) return error;
  position_ = pushed_ = initialSize_;
  return PartFile::ClearStale(folder_.get(), name_);
}

// Opens the plain file at the name, locked where it is to be written.
int LocalFile::OpenPresent(int flags) {
  // Looking first keeps devices from being opened at all; looking again below is what holds.
  struct stat status {};
  if (::fstatat(folder_.get(), name_.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) return errno;
  if (const int refusal = RefusalOf(status); refusal != 0) return refusal;
  own_.reset(OpenBeneath(folder_.get(), name_, flags | kAlways));
  if (!own_ || ::fstat(own_.get(), &status) != 0) return errno;
  if (const int refusal = RefusalOf(status); refusal != 0) return refusal;
  initialSize_ = status.st_size;
  initialTime_ = status.st_mtime;
  return flags == O_RDONLY ? 0 : LockEntry(folder_.get(), name_, own_.get());
}

int LocalFile::OpenNew() {
  own_.reset(OpenBeneath(folder_.get(), name_, O_RDWR | O_CREAT | O_EXCL | kAlways, 0666));
  if (!own_) return errno;
  created_ = true;
  if (const int error = LockEntry(folder_.get(), name_, own_.get()); error != 0) return error;
  // A writer of the part file locks that one first and looks for this one then: of two that begin
  // at the same time at least one sees the other.
  return PartFile::ClearStale(folder_.get(), name_);
}

int LocalFile::OpenPart(bool goOn) {
  struct stat status {};
  if (::fstatat(folder_.get(), name_.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0) {
    if (const int refusal = RefusalOf(status); refusal != 0) return refusal;
  }
  if (const int error = part_.Make(folder_.get(), name_, goOn); error != 0) return error;
  const int error = OpenPresent(O_WRONLY);
  if (error != 0 && error != ENOENT) return error;
  if (::fstat(part_.Fd(), &status) != 0) return errno;
  if (goOn) initialSize_ = position_ = pushed_ = status.st_size;
  return error == ENOENT ? 0 : KeepMode();
}

int LocalFile::KeepMode() {
  struct stat status {};
  if (::fstat(own_.get(), &status) != 0) return errno;
  // A file system without permissions refuses the call, and there is nothing to keep.
  if (::fchmod(part_.Fd(), status.st_mode & 0777U) != 0 && errno != EPERM && errno != ENOTSUP)
    return errno;
  return 0;
}

int LocalFile::OpenForReading(const std::string& path) {
  Discard();
  struct stat status {};
  if (::stat(path.c_str(), &status) != 0) return errno;
  if (const int refusal = RefusalOf(status); refusal != 0) return refusal;
  UniqueFd fd(::open(path.c_str(), O_RDONLY | kAlways));
  if (!fd || ::fstat(fd.get(), &status) != 0) return errno;
  if (const int refusal = RefusalOf(status); refusal != 0) return refusal;
  own_ = std::move(fd);
  initialSize_ = status.st_size;
  initialTime_ = status.st_mtime;
  return 0;
}

int LocalFile::Seek(std::int64_t offset) {
  if (writes_ || offset < 0) return EINVAL;
  position_ = offset;
  return 0;
}

int LocalFile::Read(std::span<char> buffer, std::size_t& got) {
  const int error = ReadAt(position_, buffer, got);
  position_ += static_cast<std::int64_t>(got);
  return error;
}

int LocalFile::ReadAt(std::int64_t offset, std::span<char> buffer, std::size_t& got) const {
  got = 0;
  while (got < buffer.size()) {
    const std::span<char> rest = buffer.subspan(got);
    const ssize_t count =
        ::pread(Target(), rest.data(), rest.size(), offset + static_cast<std::int64_t>(got));
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return errno;
    if (count == 0) break;
    got += static_cast<std::size_t>(count);
  }
  return 0;
}

int LocalFile::Write(std::span<const char> bytes) {
  while (!bytes.empty()) {
    const std::size_t piece = std::min(bytes.size(), kPiece);
    const ssize_t written = ::pwrite(Target(), bytes.data(), piece, position_);
    if (written < 0 && errno != EINTR) return errno;
    if (written <= 0) continue;
    bytes = bytes.subspan(static_cast<std::size_t>(written));
    position_ += written;
    StartWriteBack();
  }
  return 0;
}

// The sooner the disk begins the shorter is the wait at the end. Only a hint, so that errors do not
// matter here; Commit finds them.
void LocalFile::StartWriteBack() {
  if (position_ - pushed_ < kWriteBackStep) return;
  static_cast<void>(
      ::sync_file_range(Target(), pushed_, position_ - pushed_, SYNC_FILE_RANGE_WRITE));
  pushed_ = position_;
}

int LocalFile::StartAfresh() {
  if (!writes_) return EBADF;
  if (part_ && ::ftruncate(part_.Fd(), 0) != 0) return errno;
  if (!part_ && !(created_ && position_ == 0)) {
    // What was added to a file that is resumed is known to be wrong.
    if (!created_ && position_ > initialSize_ && ::ftruncate(own_.get(), initialSize_) != 0)
      return errno;
    if (const int error = part_.Make(folder_.get(), name_); error != 0) return error;
    if (const int error = KeepMode(); error != 0) return error;
  }
  position_ = pushed_ = 0;
  return 0;
}

void LocalFile::ApplyTime() const {
  if (!time_) return;
  const timespec times[] = {{0, UTIME_OMIT}, {*time_, 0}};
  static_cast<void>(::futimens(Target(), times));
}

int LocalFile::Commit(Durability durability) {
  if (writes_) ApplyTime();
  const bool named = created_ || part_;
  const bool now = writes_ && durability == Durability::Now;
  if ((now || part_) && ::fsync(Target()) != 0) return errno;
  // One whose name went meanwhile, maybe with its folder, is nowhere.
  if (part_) {
    if (const int error = part_.TakeName(name_); error != 0) return error;
  } else if (writes_ && !IsNamed(folder_.get(), name_, own_.get())) {
    return ENOENT;
  }
  if (now && named) {
    if (const int error = SyncEntries(folder_.get()); error != 0) return error;
  }
  created_ = false;
  const int late = part_ ? part_.Close() : 0;
  const int error = own_ && ::close(own_.release()) != 0 ? errno : late;
  Discard();
  return error;
}

void LocalFile::Keep() {
  if (part_ && position_ > 0) part_.Leave();
  Discard();
}

void LocalFile::Discard() {
  part_.Remove();
  // Only the very file that Open made is removed, not what somebody put in its place since.
  struct stat status {};
  if (created_ && ::fstat(own_.get(), &status) == 0 && status.st_size == 0 &&
      IsNamed(folder_.get(), name_, own_.get())) {
    ::unlinkat(folder_.get(), name_.c_str(), 0);
  }
  own_.reset();
  folder_.reset();
  name_.clear();
  created_ = writes_ = false;
  initialSize_ = initialTime_ = position_ = pushed_ = 0;
  time_.reset();
}

}  // namespace corvane
