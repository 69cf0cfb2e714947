#include "prefs/PrefFile.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <random>
#include <thread>

#include "prefs/PrefPaths.h"
#include "prefs/TemporaryFile.h"
#include "util/Beneath.h"

namespace corvane {
namespace {

using std::chrono::steady_clock;

constexpr std::chrono::seconds kPatience{1};
// Far above any real set: a file that promises more is no set.
constexpr std::uint32_t kSizeLimit = std::uint32_t{64} << 20;

// Pauses of different lengths keep competing threads and processes from retrying in step.
void Pause() {
  const auto thread = static_cast<unsigned>(::gettid()) & 0x7FFFU;
  const unsigned chance = std::random_device()() & 0x7FFFU;
  std::this_thread::sleep_for(std::chrono::microseconds(10'000 + thread + chance));
}

// How many bytes the file holds from `offset`, up to `size`; -1 for an error.
ssize_t ReadAt(int fd, off_t offset, void* buffer, std::size_t size) {
  std::size_t done = 0;
  while (done < size) {
    const ssize_t got = ::pread(fd, static_cast<char*>(buffer) + done, size - done,
                                offset + static_cast<off_t>(done));
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) return -1;
    if (got == 0) break;
    done += static_cast<std::size_t>(got);
  }
  return static_cast<ssize_t>(done);
}

int WriteAll(int fd, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = ::write(fd, bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) return errno;
    if (written == 0) return EIO;
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
  return 0;
}

}  // namespace

int PrefFile::Lock(const std::string& path, bool perUser) {
  const auto deadline = steady_clock::now() + kPatience;
  for (;;) {
    const int error = TryLock(path, perUser);
    if (error != EBUSY && error != EAGAIN && error != EINTR) return error;
    if (steady_clock::now() >= deadline) return EBUSY;
    if (error == EBUSY) Pause();
  }
}

// EBUSY asks for another try after a pause; EAGAIN and EINTR, at once.
int PrefFile::TryLock(const std::string& path, bool perUser) {
  UniqueFd fd(::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NONBLOCK | O_NOCTTY,
                     perUser ? 0600 : 0666));
  if (!fd) return errno == EAGAIN ? EBUSY : errno;
  struct stat status {};
  if (::fstat(fd.get(), &status) != 0) return errno;
  if (!S_ISREG(status.st_mode)) return EINVAL;
  if (::flock(fd.get(), LOCK_EX | LOCK_NB) != 0) return EBUSY;

  // Between the two calls another process may have put a new file in the place of this one.
  std::error_code unresolved;
  const std::filesystem::path real = std::filesystem::canonical(path, unresolved);
  if (unresolved || !IsNamed(AT_FDCWD, real, fd.get())) return EAGAIN;

  folder_ = real.parent_path();
  name_ = real.filename();
  mode_ = perUser ? 0600 : status.st_mode & 07777;
  fd_ = std::move(fd);
  return 0;
}

PrefFile::Reading PrefFile::Read() const {
  std::uint32_t length = 0;
  struct stat status {};
  const ssize_t got = ReadAt(fd_.get(), 0, &length, sizeof length);
  if (got < 0 || ::fstat(fd_.get(), &status) != 0) return {Extent::NoLength, errno};
  if (static_cast<std::size_t>(got) < sizeof length) return {Extent::NoLength};

  // The length is only a promise: memory is taken for what the file really holds.
  const std::int64_t held = status.st_size - std::int64_t{sizeof length};
  if (length > held) return {Extent::ShortBody};
  if (length > kSizeLimit) return {Extent::NotAMessage};
  std::string body(length, '\0');
  const ssize_t taken = ReadAt(fd_.get(), sizeof length, body.data(), body.size());
  if (taken < 0) return {Extent::NotAMessage};
  if (static_cast<std::size_t>(taken) < body.size()) return {Extent::ShortBody};
  auto message = Message::Unflatten(body);
  if (!message) return {Extent::NotAMessage};
  return {Extent::Whole, 0, std::move(*message)};
}

int PrefFile::Replace(const Message& message) {
  const std::string body = message.Flatten();
  if (body.size() > kSizeLimit) return EFBIG;
  const auto length = static_cast<std::uint32_t>(body.size());
  std::string bytes(sizeof length, '\0');
  std::memcpy(bytes.data(), &length, sizeof length);
  bytes += body;

  const UniqueFd folder(::open(folder_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (!folder) return errno;
  TemporaryFile::RemoveStale(folder_, folder.get());
  TemporaryFile fresh;
  if (const int error = fresh.Make(folder_, folder.get())) return error;
  if (const int error = WriteAll(fresh.Fd(), bytes)) return error;
  if (::fchmod(fresh.Fd(), mode_) != 0 || ::fsync(fresh.Fd()) != 0) return errno;
  if (const int error = KeepWhatIsDamaged(folder.get())) return error;

  // The new file has been locked since it was made, so that the lock never has a gap.
  if (const int error = fresh.RenameTo(name_)) return error;
  fd_ = fresh.Release();
  return SyncEntries(folder.get());
}

int PrefFile::KeepWhatIsDamaged(int folder) const {
  struct stat status {};
  if (::fstat(fd_.get(), &status) != 0) return errno;
  if (status.st_size == 0 || Read().extent == Extent::Whole) return 0;
  // What was kept at another time stays: NAME.damaged, NAME.1.damaged, and so on.
  for (int number = 0; number < 100; ++number) {
    std::string kept = name_;
    if (number > 0) kept += "." + std::to_string(number);
    kept += kDamagedSuffix;
    if (::linkat(folder, name_.c_str(), folder, kept.c_str(), 0) == 0) return 0;
    if (errno == EEXIST && IsNamed(folder, kept, fd_.get())) return 0;
    if (errno == EEXIST) continue;
    // Not every file system has hard links.
    std::error_code failure;
    const std::filesystem::path directory = folder_;
    std::filesystem::copy_file(directory / name_, directory / kept, failure);
    return failure.value();
  }
  return EEXIST;
}

}  // namespace corvane
