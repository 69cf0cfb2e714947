#include "util/LocalUrl.h"

#include <strings.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <charconv>

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

// The byte behind a "%"; nothing without two hexadecimal digits.
std::optional<char> Escaped(std::string_view digits) {
  if (digits.size() < 2) return {};
  unsigned value = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + 2, value, 16);
  if (error != std::errc() || end != digits.data() + 2) return {};
  return static_cast<char>(value);
}

std::optional<std::string> Unescaped(std::string_view text) {
  std::string path;
  for (std::size_t i = 0; i < text.size(); ++i) {
    char c = text[i];
    if (c == '%') {
      const std::optional<char> byte = Escaped(text.substr(i + 1, 2));
      if (!byte.has_value()) return {};
      c = *byte;
      i += 2;
    } else if (c == '?' || c == '#' || static_cast<unsigned char>(c) <= ' ' || c == 127) {
      return {};
    }
    if (c == '\0' || c == '\r' || c == '\n') return {};
    path += c;
  }
  return path;
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
  if (!url.starts_with('/')) return {};
  return Unescaped(url);
}

std::string FolderOf(std::string_view path) {
  const std::size_t slash = path.find_last_of('/');
  return std::string(path.substr(0, std::max(slash, std::size_t{1})));
}

}  // namespace corvane
