#include "workers/ListingCache.h"

#include <fcntl.h>
#include <stdlib.h>
#include <unistd.h>

#include <atomic>
#include <filesystem>
#include <string>
#include <vector>

#include "util/UniqueFd.h"

namespace corvane {
namespace {

// The process's private directory, made on first use and removed at exit.
class PrivateDirectory {
 public:
  PrivateDirectory() {
    std::error_code error;
    std::string pattern = (std::filesystem::temp_directory_path(error) / "corvane-XXXXXX").string();
    if (!error && ::mkdtemp(pattern.data()) != nullptr) path_ = pattern;
  }
  ~PrivateDirectory() { Remove(); }
  PrivateDirectory(const PrivateDirectory&) = delete;
  PrivateDirectory& operator=(const PrivateDirectory&) = delete;

  void Remove() const {
    std::error_code ignored;
    if (!path_.empty()) std::filesystem::remove_all(path_, ignored);
  }

  [[nodiscard]] std::string NextFile() {
    return path_.empty() ? std::string() : path_ + "/" + std::to_string(++count_) + ".txt";
  }

 private:
  std::string path_;
  std::atomic<int> count_{0};
};

PrivateDirectory& TheDirectory() {
  static PrivateDirectory directory;
  return directory;
}

}  // namespace

ListingCache::ListingCache() : path_(TheDirectory().NextFile()) {}

ListingCache::~ListingCache() {
  if (!path_.empty()) ::unlink(path_.c_str());
}

void ListingCache::RemoveAll() {
  TheDirectory().Remove();
}

void ListingCache::WriteListing(std::string_view directory, std::string_view text) {
  directory_ = directory;
  if (path_.empty()) return;
  constexpr int kFlags = O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOFOLLOW;
  const UniqueFd file(::open(path_.c_str(), kFlags, 0600));
  while (file && !text.empty()) {
    const ssize_t written = ::write(file.get(), text.data(), text.size());
    if (written <= 0) return;
    text.remove_prefix(static_cast<std::size_t>(written));
  }
}

bool ListingCache::Read(const std::function<bool(std::string_view)>& take) const {
  const UniqueFd file(::open(path_.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW));
  std::vector<char> piece(std::size_t{64} * 1024);
  ssize_t count = file ? ::read(file.get(), piece.data(), piece.size()) : -1;
  while (count > 0 && take({piece.data(), static_cast<std::size_t>(count)})) {
    count = ::read(file.get(), piece.data(), piece.size());
  }
  return count >= 0;
}

}  // namespace corvane
