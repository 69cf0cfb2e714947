#include "sites/SiteExtras.h"

#include <algorithm>

#include "sites/ShortcutFolders.h"
#include "sites/SiteOf.h"
#include "util/Percent.h"
#include "util/PortFrom.h"

namespace corvane {
namespace {

constexpr std::string_view kSecurity = "security=";
constexpr std::string_view kEncoding = "encoding=";
constexpr std::string_view kCertificate = "certificate=";
constexpr std::string_view kConnections = "connections=";
constexpr std::string_view kFolder = "folder=";
constexpr std::string_view kAsks = "asks";
constexpr std::string_view kKept = "kept";

std::string Login(const Site& site) {
  return PercentEncoded(site.user, "") + "@" + PercentEncoded(site.host, "") + ":" +
         std::to_string(site.port);
}

std::string_view TakeWord(std::string_view& text) {
  const std::string_view word = text.substr(0, text.find(' '));
  text.remove_prefix(std::min(word.size() + 1, text.size()));
  return word;
}

void TakeExtra(std::string_view word, Shortcut& shortcut) {
  Site& site = shortcut.site;
  const auto value = [word](std::string_view name) {
    return PercentDecoded(word.substr(name.size())).value_or("");
  };
  if (word.starts_with(kSecurity)) {
    site.security = SecurityFrom(PortFrom(value(kSecurity))).value_or(Security::Automatic);
  } else if (word.starts_with(kEncoding)) {
    site.encoding = value(kEncoding);
  } else if (word.starts_with(kCertificate)) {
    site.clientCertificate = value(kCertificate);
  } else if (word.starts_with(kConnections)) {
    site.connections =
        std::clamp<std::int32_t>(PortFrom(value(kConnections)), 0, Site::kMostConnections);
  } else if (word.starts_with(kFolder)) {
    shortcut.folder = CleanPath(value(kFolder));
  } else if (word == kAsks) {
    site.asksPassword = true;
  } else if (word == kKept) {
    site.keptPassword = true;
  }
}

}  // namespace

std::string ExtrasText(const Shortcut& shortcut) {
  const Site& site = shortcut.site;
  std::string text;
  const auto add = [&text](std::string_view name, const std::string& value) {
    text.append(" ").append(name).append(PercentEncoded(value, "/"));
  };
  if (site.security != Security::Automatic) {
    add(kSecurity, std::to_string(static_cast<int>(site.security)));
  }
  if (!site.encoding.empty()) add(kEncoding, site.encoding);
  if (!site.clientCertificate.empty()) add(kCertificate, site.clientCertificate);
  if (site.connections > 0) add(kConnections, std::to_string(site.connections));
  if (!shortcut.folder.empty()) add(kFolder, shortcut.folder);
  if (site.asksPassword) add(kAsks, {});
  if (site.keptPassword) add(kKept, {});
  return text.empty() ? "" : Login(site) + text;
}

void TakeExtras(std::string_view text, Shortcut& shortcut) {
  if (TakeWord(text) != Login(shortcut.site)) return;
  while (!text.empty()) TakeExtra(TakeWord(text), shortcut);
}

}  // namespace corvane
