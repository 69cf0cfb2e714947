#include "prefs/TemporaryFile.h"

#include <fcntl.h>
#include <sys/file.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>

#include "prefs/PrefPaths.h"
#include "util/Beneath.h"

namespace corvane {

TemporaryFile::~TemporaryFile() {
  if (!name_.empty()) ::unlinkat(folder_, name_.c_str(), 0);
}

int TemporaryFile::Make(const std::string& path, int folder) {
  folder_ = folder;
  // Another process may take the file for a stale one before it is locked; the next try will do.
  for (int attempt = 0; attempt < 10; ++attempt) {
    std::string whole = path + "/" + std::string(kTemporaryPrefix) + "XXXXXX";
    fd_.reset(::mkostemp(whole.data(), O_CLOEXEC));
    if (!fd_) return errno;
    name_ = whole.substr(path.size() + 1);
    if (::flock(fd_.get(), LOCK_EX | LOCK_NB) == 0 && IsNamed(folder, name_, fd_.get())) return 0;
    ::unlinkat(folder, name_.c_str(), 0);
    name_.clear();
  }
  return EBUSY;
}

int TemporaryFile::RenameTo(const std::string& name) {
  if (::renameat(folder_, name_.c_str(), folder_, name.c_str()) != 0) return errno;
  name_.clear();
  return 0;
}

void TemporaryFile::RemoveStale(const std::string& path, int folder) {
  std::error_code ended;
  std::filesystem::directory_iterator entry(path, ended);
  for (; !ended && entry != std::filesystem::directory_iterator(); entry.increment(ended)) {
    const std::string name = entry->path().filename();
    if (!IsTemporary(name)) continue;
    const UniqueFd fd(
        ::openat(folder, name.c_str(), O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC | O_NOCTTY));
    if (!fd || ::flock(fd.get(), LOCK_EX | LOCK_NB) != 0) continue;
    ::unlinkat(folder, name.c_str(), 0);
  }
}

}  // namespace corvane
