#include "util/ParseUrl.h"

#include <algorithm>
#include <string>
#include <utility>

namespace corvane {
namespace {

constexpr std::string_view kScheme = "ftp://";

// Takes flag and label from the front of `text`; a text without "*" is left as it is.
void TakeLabel(std::string_view& text, Shortcut& shortcut) {
  shortcut.passive = !text.starts_with('A');
  const std::size_t star = text.find('*');
  if (star == std::string_view::npos) return;
  if (star > 1) shortcut.label = text.substr(1, star - 1);
  text.remove_prefix(star + 1);
}

// Reads user, password and host; answers the position that ends the host, or nothing.
std::optional<std::size_t> ReadLogin(std::string_view url, Shortcut& shortcut) {
  std::string part;
  bool userEnded = false;
  for (std::size_t i = kScheme.size(); i < url.size(); ++i) {
    const char c = url[i];
    if (c == ':' && !userEnded) {
      userEnded = true;
      shortcut.user = std::exchange(part, {});
    } else if (c == '@') {
      userEnded = true;  // what stands before "@" is the password, even alone
      shortcut.pass = std::exchange(part, {});
    } else if (c == ':' || c == '/' || c == '\0') {
      if (c == '/') part += c;
      shortcut.host = part;
      return i;
    } else {
      part += c;
    }
  }
  return std::nullopt;
}

// Reads path and port, which may follow each other in any order.
void ReadPathAndPort(std::string_view url, std::size_t at, Shortcut& shortcut) {
  while (at < url.size()) {
    if (url[at] == '/') {
      const std::size_t end = std::min(url.find(':', at), url.size());
      shortcut.path = url.substr(at, end - at);
      at = end;
    } else if (url[at] == ':') {
      const std::size_t end = std::min(url.find('/', at), url.size());
      shortcut.port = url.substr(at + 1, end - at - 1);
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
  const auto hostEnd = ReadLogin(text, shortcut);
  if (!hostEnd) return std::nullopt;
  ReadPathAndPort(text, *hostEnd, shortcut);
  return shortcut;
}

}  // namespace corvane
