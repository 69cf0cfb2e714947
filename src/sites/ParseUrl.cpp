#include "sites/ParseUrl.h"

#include <algorithm>
#include <string>
#include <utility>

#include "util/PortFrom.h"

namespace corvane {
namespace {

constexpr std::string_view kScheme = "ftp://";
constexpr std::uint16_t kUsualPort = 21;

// Takes flag and label from the front of `text`; a text without "*" is left as it is.
void TakeLabel(std::string_view& text, Shortcut& shortcut) {
  shortcut.site.passive = !text.starts_with('A');
  const std::size_t star = text.find('*');
  if (star == std::string_view::npos) return;
  if (star > 1) shortcut.label = text.substr(1, star - 1);
  text.remove_prefix(star + 1);
}

// Reads user, password and host; returns the position that ends the host, or nothing.
std::optional<std::size_t> ReadLogin(std::string_view url, Site& site) {
  std::string part;
  bool userEnded = false;
  for (std::size_t i = kScheme.size(); i < url.size(); ++i) {
    const char c = url[i];
    if (c == ':' && !userEnded) {
      userEnded = true;
      site.user = std::exchange(part, {});
    } else if (c == '@') {
      userEnded = true;  // what stands before "@" is the password, even alone
      site.password = std::exchange(part, {});
    } else if (c == ':' || c == '/' || c == '\0') {
      if (c == '/') part += c;
      site.host = part;
      return i;
    } else {
      part += c;
    }
  }
  return std::nullopt;
}

// Reads path and port, which may follow each other in any order.
void ReadPathAndPort(std::string_view url, std::size_t at, Site& site) {
  while (at < url.size()) {
    if (url[at] == '/') {
      const std::size_t end = std::min(url.find(':', at), url.size());
      site.path = url.substr(at, end - at);
      at = end;
    } else if (url[at] == ':') {
      const std::size_t end = std::min(url.find('/', at), url.size());
      const std::string_view text = url.substr(at + 1, end - at - 1);
      site.port = text.empty() ? kUsualPort : PortFrom(text);
      at = end;
    } else {
      ++at;
    }
  }
}

}  // namespace

std::optional<Shortcut> ParseUrl(std::string_view text, bool plain) {
  Shortcut shortcut;
  if (!plain) TakeLabel(text, shortcut);
  if (text.size() <= kScheme.size() || !text.starts_with(kScheme)) return std::nullopt;
  const auto hostEnd = ReadLogin(text, shortcut.site);
  if (!hostEnd) return std::nullopt;
  ReadPathAndPort(text, *hostEnd, shortcut.site);
  return shortcut;
}

}  // namespace corvane
