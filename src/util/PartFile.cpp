#include "util/PartFile.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdint>
#include <cstdio>

#include "util/Beneath.h"

namespace corvane {
namespace {

constexpr std::size_t kNameLimit = 255;
constexpr std::string_view kSuffix = ".corvane-part";

// FNV-1a; unlike std::hash every build and process gets the same number.
std::string NumberOf(std::string_view name) {
  std::uint64_t number = 14695981039346656037U;
  for (const char byte : name)
    number = (number ^ static_cast<unsigned char>(byte)) * 1099511628211U;
  char digits[17];
  std::snprintf(digits, sizeof digits, "%016llx", static_cast<unsigned long long>(number));
  return digits;
}

}  // namespace

std::string PartFile::NameFor(std::string_view name) {
  if (1 + name.size() + kSuffix.size() <= kNameLimit)
    return "." + std::string(name) + std::string(kSuffix);
  const std::string number = "~" + NumberOf(name);
  std::size_t kept = kNameLimit - 1 - number.size() - kSuffix.size();
  // Some file systems take whole UTF-8 characters only.
  while (kept > 0 && (static_cast<unsigned char>(name[kept]) & 0xC0U) == 0x80) --kept;
  return "." + std::string(name.substr(0, kept)) + number + std::string(kSuffix);
}

bool PartFile::IsPartName(std::string_view name) {
  return name.starts_with('.') && name.ends_with(kSuffix);
}

int PartFile::ClearStale(int folder, const std::string& name) {
  const std::string part = NameFor(name);
  // O_NONBLOCK: opening a FIFO must not wait.
  const UniqueFd fd(OpenBeneath(folder, part, O_WRONLY | O_NONBLOCK | O_NOCTTY));
  if (!fd) return errno == ENOENT ? 0 : errno;
  struct stat status {};
  if (::fstat(fd.get(), &status) != 0) return errno;
  if (!S_ISREG(status.st_mode)) return EEXIST;
  if (const int error = LockEntry(folder, part, fd.get()); error != 0) return error;
  return ::unlinkat(folder, part.c_str(), 0) == 0 ? 0 : errno;
}

int PartFile::Make(int folder, const std::string& name, bool goOn) {
  Remove();
  const std::string part = NameFor(name);
  if (!goOn) {
    if (const int error = ClearStale(folder, name); error != 0) return error;
  }
  // O_NONBLOCK: opening a FIFO must not wait.
  const int flags = goOn ? O_NONBLOCK : O_EXCL;
  UniqueFd fd(OpenBeneath(folder, part, O_RDWR | O_CREAT | O_NOCTTY | flags, 0666));
  // Another process has just made it.
  if (!fd) return errno == EEXIST ? EWOULDBLOCK : errno;
  struct stat status {};
  if (::fstat(fd.get(), &status) != 0) return errno;
  if (!S_ISREG(status.st_mode)) return EEXIST;
  if (const int error = LockEntry(folder, part, fd.get()); error != 0) return error;
  folder_ = folder;
  fd_ = std::move(fd);
  part_ = part;
  return 0;
}

int PartFile::TakeName(const std::string& name) {
  if (!IsNamed(folder_, part_, fd_.get())) return ESTALE;
  struct stat status {};
  if (::fstatat(folder_, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0 &&
      !S_ISREG(status.st_mode))
    return EEXIST;
  if (::renameat(folder_, part_.c_str(), folder_, name.c_str()) != 0) return errno;
  part_.clear();
  return 0;
}

int PartFile::Close() {
  return fd_ && ::close(fd_.release()) != 0 ? errno : 0;
}

void PartFile::Leave() {
  part_.clear();
  fd_.reset();
}

void PartFile::Remove() {
  if (!part_.empty() && fd_ && IsNamed(folder_, part_, fd_.get()))
    ::unlinkat(folder_, part_.c_str(), 0);
  part_.clear();
  fd_.reset();
}

}  // namespace corvane
