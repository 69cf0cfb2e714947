#include "util/LocalFolder.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>

namespace corvane {
namespace {

constexpr int kFlags = O_PATH | O_DIRECTORY | O_CLOEXEC;

}  // namespace

bool IsSafeLocalName(std::string_view name) {
  return !name.empty() && name != "." && name != ".." &&
         name.find_first_of(std::string_view("/\0", 2)) == std::string_view::npos;
}

int LocalFolder::Open(const std::string& path) {
  fd_.reset(::open(path.c_str(), kFlags));
  return fd_ ? 0 : errno;
}

int LocalFolder::Enter(const LocalFolder& above, std::string_view name) {
  fd_.reset();
  if (!IsSafeLocalName(name)) return EINVAL;
  const std::string entry(name);
  if (::mkdirat(above.Fd(), entry.c_str(), 0777) != 0 && errno != EEXIST) return errno;
  fd_.reset(::openat(above.Fd(), entry.c_str(), kFlags | O_NOFOLLOW));
  return fd_ ? 0 : errno;
}

}  // namespace corvane
