#include "util/Url.h"

#include <strings.h>

#include <algorithm>
#include <charconv>
#include <iterator>
#include <utility>

#include "util/Percent.h"

namespace corvane {
namespace {

using Scheme = Url::Scheme;

constexpr std::pair<std::string_view, Scheme> kSchemes[] = {
    {"ftp://", Scheme::Ftp}, {"ftpes://", Scheme::Ftpes}, {"ftps://", Scheme::Ftps}};

std::string_view Trimmed(std::string_view text) {
  constexpr std::string_view kBlanks = " \t\r\n";
  text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
  return text.substr(0, text.find_last_not_of(kBlanks) + 1);
}

// The scheme with which `text` begins; null without any.
const std::pair<std::string_view, Scheme>* SchemeOf(std::string_view text) {
  const auto* found = std::ranges::find_if(kSchemes, [text](const auto& scheme) {
    const std::string_view name = scheme.first;
    return text.size() >= name.size() && ::strncasecmp(text.data(), name.data(), name.size()) == 0;
  });
  return found != std::end(kSchemes) ? found : nullptr;
}

// Puts the part's bytes into `bytes`; false where they cannot be read.
bool Take(std::string_view part, std::string& bytes) {
  auto decoded = PercentDecoded(part);
  if (!decoded.has_value()) return false;
  bytes = std::move(*decoded);
  return true;
}

bool ReadLogin(std::string_view login, Url& url) {
  const std::size_t colon = std::min(login.find(':'), login.size());
  const std::string_view password = login.substr(std::min(colon + 1, login.size()));
  return Take(login.substr(0, colon), url.user) && Take(password, url.password);
}

bool ReadPort(std::string_view digits, Url& url) {
  if (digits.empty()) return true;  // "host:" names the usual one
  std::uint16_t port = 0;
  const char* end = digits.data() + digits.size();
  const auto [stop, error] = std::from_chars(digits.data(), end, port);
  if (error != std::errc() || stop != end || port == 0) return false;
  url.port = port;
  return true;
}

// "host:port" or "[address]:port".
bool ReadHost(std::string_view text, Url& url) {
  std::size_t end = text.find(':');
  std::string_view host = text.substr(0, end);
  if (text.starts_with('[')) {
    const std::size_t bracket = text.find(']');
    if (bracket == std::string_view::npos) return false;
    host = text.substr(1, bracket - 1);
    if (host.find(':') == std::string_view::npos) return false;
    end = bracket + 1;
    if (end < text.size() && text[end] != ':') return false;
  }
  if (!Take(host, url.host) || url.host.empty()) return false;
  return end >= text.size() || ReadPort(text.substr(end + 1), url);
}

// What stands behind the scheme.
std::optional<Url> ReadRest(std::string_view text) {
  Url url;
  const std::size_t slash = std::min(text.find('/'), text.size());
  std::string_view authority = text.substr(0, slash);
  if (const std::size_t at = authority.rfind('@'); at != std::string_view::npos) {
    if (!ReadLogin(authority.substr(0, at), url)) return {};
    authority.remove_prefix(at + 1);
  }
  if (!ReadHost(authority, url) || !Take(text.substr(slash), url.path)) return {};
  if (url.path == "/") url.path.clear();
  return url;
}

// An IPv6 address, with or without an interface behind "%".
bool IsPlainV6(std::string_view text) {
  const std::string_view address = text.substr(0, text.find('%'));
  return std::ranges::count(address, ':') > 1 &&
         address.find_first_not_of("0123456789abcdefABCDEF:.") == std::string_view::npos;
}

}  // namespace

bool Url::IsMeant(std::string_view text) {
  return SchemeOf(Trimmed(text)) != nullptr;
}

std::optional<Url> Url::Read(std::string_view text) {
  text = Trimmed(text);
  const auto* scheme = SchemeOf(text);
  if (scheme == nullptr) return {};
  auto url = ReadRest(text.substr(scheme->first.size()));
  if (url.has_value()) url->scheme = scheme->second;
  return url;
}

std::optional<Url> Url::ReadAddress(std::string_view text) {
  if (IsMeant(text)) return Read(text);
  text = Trimmed(text);
  constexpr std::string_view kInNoName("\r\n\0", 3);
  if (text.empty() || text.find("://") != std::string_view::npos) return {};
  if (text.find_first_of(kInNoName) != std::string_view::npos) return {};
  const bool alone = text.find_first_of(":/@[]") == std::string_view::npos;
  if (alone || IsPlainV6(text)) return Url{.host = std::string(text)};
  return ReadRest(text);
}

std::string Url::Written() const {
  constexpr std::string_view kInHost = "!$&'()*+,;=";
  constexpr std::string_view kInPath = "!$&'()*+,;=:@/";
  std::string text(
      std::ranges::find(kSchemes, scheme, [](const auto& one) { return one.second; })->first);
  if (host.find(':') != std::string::npos) {
    text += "[" + PercentEncoded(host, ":") + "]";
  } else {
    text += PercentEncoded(host, kInHost);
  }
  if (port.value_or(UsualPort()) != UsualPort()) text += ":" + std::to_string(*port);
  return text + PercentEncoded(path, kInPath);
}

}  // namespace corvane
