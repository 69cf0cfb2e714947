#include "util/LocalUrl.h"

#include <strings.h>
#include <unistd.h>

#include <algorithm>
#include <array>

#include "util/Percent.h"

namespace corvane {
namespace {

constexpr std::string_view kScheme = "file:";

bool SameIgnoringCase(std::string_view a, std::string_view b) {
  return a.size() == b.size() && ::strncasecmp(a.data(), b.data(), a.size()) == 0;
}

bool IsThisHost(std::string_view host) {
  if (host.empty() || SameIgnoringCase(host, "localhost")) return true;
  std::array<char, 256> name{};
  return ::gethostname(name.data(), name.size() - 1) == 0 && SameIgnoringCase(host, name.data());
}

// False with a query or fragment, and with what a URL never holds unescaped.
bool IsPlainPath(std::string_view path) {
  return std::ranges::none_of(
      path, [](unsigned char c) { return c == '?' || c == '#' || c <= ' ' || c == 127; });
}

}  // namespace

std::optional<std::string> LocalPathOf(std::string_view url) {
  if (!SameIgnoringCase(url.substr(0, kScheme.size()), kScheme)) return {};
  url.remove_prefix(kScheme.size());
  if (url.starts_with("//")) {
    const std::size_t slash = std::min(url.find('/', 2), url.size());
    if (!IsThisHost(url.substr(2, slash - 2))) return {};
    url.remove_prefix(slash);
  }
  if (!url.starts_with('/') || !IsPlainPath(url)) return {};
  return PercentDecoded(url);
}

std::string FolderOf(std::string_view path) {
  const std::size_t slash = path.find_last_of('/');
  return std::string(path.substr(0, std::max(slash, std::size_t{1})));
}

}  // namespace corvane
