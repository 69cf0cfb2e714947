#include "app/connect/PastedUrl.h"

#include <algorithm>

namespace corvane {
namespace {

constexpr std::string_view kScheme = "ftp://";

// Reads user, password and host; answers the position that ends the host.
std::size_t ReadLogin(std::string_view text, PastedUrl& url) {
  bool userEnded = false;
  std::size_t begin = kScheme.size();
  for (std::size_t i = begin; i < text.size(); ++i) {
    const std::string_view part = text.substr(begin, i - begin);
    if (text[i] == ':' && !userEnded) {
      userEnded = true;
      url.user = part;
      begin = i + 1;
    } else if (text[i] == '@') {
      url.pass = part;
      begin = i + 1;
    } else if (text[i] == ':' || text[i] == '/') {
      url.host = part;
      return i;
    }
  }
  url.host = text.substr(begin);
  return text.size();
}

}  // namespace

std::optional<PastedUrl> PastedUrl::Read(std::string_view text) {
  text = text.substr(0, text.find_first_of("\r\n"));
  if (text.size() < kScheme.size() || !text.starts_with(kScheme)) return {};
  PastedUrl url;
  std::size_t at = ReadLogin(text, url);
  if (at < text.size() && text[at] == '/') {
    const std::size_t end = std::min(text.find(':', at), text.size());
    url.path = text.substr(at, end - at);
    at = end;
  }
  if (at < text.size()) url.port = text.substr(at + 1);
  return url;
}

}  // namespace corvane
