#include "prefs/PrefPaths.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstdlib>

#include "util/Beneath.h"

namespace corvane {
namespace {

constexpr std::string_view kCommon = "(libprefs common)";

constexpr mode_t kPrivateMode = 0700;
constexpr mode_t kSystemMode = 0755;  // of the shared base itself
constexpr mode_t kSharedMode = 0777;
// Every bit that a mode can have; deliberately more than a directory keeps.
constexpr mode_t kCommonMode = 017777;

std::string Environment(const char* name) {
  const char* const value = std::getenv(name);
  return value != nullptr && *value == '/' ? value : "";
}

int MakeDirectory(const std::string& path, mode_t mode) {
  struct stat status {};
  // Looking again afterwards also finds what another process has made meanwhile.
  if (::stat(path.c_str(), &status) != 0) {
    ::mkdir(path.c_str(), mode);
    if (::stat(path.c_str(), &status) != 0) return ENOENT;
  }
  return S_ISDIR(status.st_mode) ? 0 : ENOTDIR;
}

}  // namespace

std::string BaseDirectory(bool perUser) {
  if (!perUser) return "/etc/xdg";
  if (std::string named = Environment("XDG_CONFIG_HOME"); !named.empty()) return named;
  const std::string home = Environment("HOME");
  return home.empty() ? "" : home + "/.config";
}

std::string AppDirectory(const std::string& base, std::string_view app) {
  return base + "/" + std::string(kAppPrefix) + std::string(app);
}

std::string SetDirectory(const std::string& base, std::string_view app, bool perUser) {
  const std::string directory = AppDirectory(base, app);
  return perUser ? directory : directory + "/" + std::string(kCommon);
}

bool IsSetName(std::string_view name) {
  for (;;) {
    const std::size_t slash = name.find('/');
    if (!IsSafeLocalName(name.substr(0, slash))) return false;
    if (slash == std::string_view::npos) return !IsTemporary(name);
    name.remove_prefix(slash + 1);
  }
}

bool IsTemporary(std::string_view fileName) {
  return fileName.starts_with(kTemporaryPrefix) && fileName.size() == kTemporaryPrefix.size() + 6;
}

bool IsDamaged(std::string_view fileName) {
  return fileName.ends_with(kDamagedSuffix);
}

int MakeDirectories(const std::string& base, const std::string& path, bool perUser) {
  for (std::size_t end = path.find('/', 1); end != std::string::npos;
       end = path.find('/', end + 1)) {
    const std::string directory = path.substr(0, end);
    mode_t mode = end <= base.size() ? kSystemMode : kSharedMode;
    if (end > base.size() && directory.ends_with("/" + std::string(kCommon))) mode = kCommonMode;
    if (const int error = MakeDirectory(directory, perUser ? kPrivateMode : mode)) return error;
  }
  return 0;
}

}  // namespace corvane
