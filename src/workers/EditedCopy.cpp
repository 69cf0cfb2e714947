#include "workers/EditedCopy.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <cstdio>
#include <filesystem>
#include <span>
#include <system_error>

#include "util/Digest.h"
#include "util/LocalFile.h"
#include "util/LocalFolder.h"
#include "util/PartFile.h"
#include "util/UniqueFd.h"

namespace corvane {
namespace {

namespace fs = std::filesystem;

constexpr mode_t kFolderMode = 0700;
constexpr mode_t kFileMode = 0600;
constexpr std::int64_t kMostNumbers = std::int64_t{1} << 52;

constexpr const char* Ending(EditedCopy::Place place) {
  switch (place) {
    case EditedCopy::Place::Here: return "";
    case EditedCopy::Place::Sent: return ".sent";
    case EditedCopy::Place::Server: return ".server";
  }
  return "";
}

int WriteAll(int fd, std::span<const char> bytes) {
  while (!bytes.empty()) {
    const ssize_t wrote = ::write(fd, bytes.data(), bytes.size());
    if (wrote < 0 && errno == EINTR) continue;
    if (wrote < 0) return errno;
    bytes = bytes.subspan(static_cast<std::size_t>(wrote));
  }
  return 0;
}

// Reads the file, to `fd` where that is one.
EditedCopy::Look ReadThrough(const std::string& path, int fd) {
  EditedCopy::Look look;
  LocalFile file;
  if (look.error = file.OpenForReading(path); look.error != 0) return look;
  Digest digest(DigestKind::Sha256);
  std::vector<char> buffer(std::size_t{256} * 1024);
  for (std::size_t got = 1; got > 0;) {
    if (look.error = file.Read(buffer, got); look.error != 0) return look;
    const std::span<const char> bytes = std::span(buffer).first(got);
    digest.Add(bytes);
    look.size += static_cast<std::int64_t>(got);
    if (fd >= 0) look.error = WriteAll(fd, bytes);
    if (look.error != 0) return look;
  }
  LocalFile now;
  look.error = now.OpenForReading(path);
  const bool same = look.size == now.InitialSize() && file.InitialTime() == now.InitialTime();
  if (look.error == 0 && !same) look.error = EAGAIN;
  look.modified = file.InitialTime();
  look.digest = digest.Take();
  return look;
}

}  // namespace

std::string EditedCopy::FolderOf(const std::string& root, std::int64_t id, Place place) {
  return root + "/" + std::to_string(id) + Ending(place);
}

// Part files have names of their own, which no program is to open.
std::string EditedCopy::SafeName(const std::string& name) {
  std::string safe = name;
  for (char& c : safe)
    if (c == '/' || c == '\0') c = '_';
  constexpr std::size_t kLongest = 200;
  if (safe.size() > kLongest) {
    const std::size_t dot = safe.rfind('.');
    const std::string ending =
        dot != std::string::npos && safe.size() - dot < 16 ? safe.substr(dot) : "";
    std::size_t end = kLongest - ending.size();
    while (end > 0 && (static_cast<unsigned char>(safe[end]) & 0xC0U) == 0x80U) --end;
    safe = safe.substr(0, end) + ending;
  }
  if (!IsSafeLocalName(safe) || PartFile::IsPartName(safe)) safe = "file" + safe;
  return IsSafeLocalName(safe) && !PartFile::IsPartName(safe) ? safe : "file";
}

int EditedCopy::MakeFolder(const std::string& folder) {
  if (::mkdir(folder.c_str(), kFolderMode) == 0) return 0;
  if (errno == EEXIST) {
    std::error_code ignored;
    return fs::is_directory(folder, ignored) ? 0 : ENOTDIR;
  }
  if (errno != ENOENT) return errno;
  const std::size_t slash = folder.rfind('/');
  if (slash == std::string::npos || slash == 0) return ENOENT;
  if (const int error = MakeFolder(folder.substr(0, slash)); error != 0) return error;
  return ::mkdir(folder.c_str(), kFolderMode) == 0 || errno == EEXIST ? 0 : errno;
}

void EditedCopy::Remove(const std::string& root, std::int64_t id) {
  for (const Place place : {Place::Here, Place::Sent, Place::Server}) {
    std::error_code ignored;
    fs::remove_all(FolderOf(root, id, place), ignored);
  }
}

std::vector<std::int64_t> EditedCopy::Numbers(const std::string& root) {
  std::vector<std::int64_t> numbers;
  std::error_code error;
  for (fs::directory_iterator entry(root, error), end; !error && entry != end;
       entry.increment(error)) {
    const std::string name = entry->path().filename();
    std::int64_t number = 0;
    const auto failed = std::from_chars(name.data(), name.data() + name.size(), number).ec;
    const bool usual = failed == std::errc() && number > 0 && number < kMostNumbers;
    if (usual) numbers.push_back(number);
  }
  return numbers;
}

bool EditedCopy::HoldsMore(const std::string& folder, const std::string& name) {
  bool copy = false;
  bool backup = false;
  std::error_code error;
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end;
       entry.increment(error)) {
    const std::string found = entry->path().filename();
    if (found != name && found != name + "~") return true;
    (found == name ? copy : backup) = true;
  }
  if (error) return error != std::errc::no_such_file_or_directory;
  return backup && !copy;
}

EditedCopy::Look EditedCopy::LookAt(const std::string& path) {
  return ReadThrough(path, -1);
}

EditedCopy::Look EditedCopy::Take(const std::string& path, const std::string& to) {
  if (::unlink(to.c_str()) != 0 && errno != ENOENT) return {.error = errno};
  const UniqueFd fd(::open(to.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, kFileMode));
  if (fd.get() < 0) return {.error = errno};
  Look look = ReadThrough(path, fd.get());
  if (look.error == 0 && ::fsync(fd.get()) != 0) look.error = errno;
  if (look.error != 0) ::unlink(to.c_str());
  return look;
}

int EditedCopy::Move(const std::string& from, const std::string& to) {
  return std::rename(from.c_str(), to.c_str()) == 0 ? 0 : errno;
}

}  // namespace corvane
