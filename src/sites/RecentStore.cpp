#include "sites/RecentStore.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <string>
#include <utility>

#include "settings/Access.h"
#include "sites/SiteOf.h"
#include "util/Percent.h"
#include "util/PortFrom.h"

namespace corvane {
namespace {

using Connection = RecentStore::Connection;

constexpr const char* kSet = "recent";

// Time, mode, host, port, user, path, security, encoding, certificate and number of connections,
// each as in a URL, so that a blank parts them. The last four may be missing.
std::string StoredForm(const Connection& connection) {
  const Site& site = connection.site;
  const auto part = [](const std::string& text) { return " " + PercentEncoded(text, ":@/"); };
  return std::to_string(connection.when) + (site.passive ? " P" : " A") + part(site.host) + " " +
         std::to_string(site.port) + part(site.user) + part(site.path) + " " +
         std::to_string(static_cast<int>(site.security)) + part(site.encoding) +
         part(site.clientCertificate) + " " + std::to_string(site.connections);
}

std::string TakePart(std::string_view& text) {
  const std::string_view part = text.substr(0, text.find(' '));
  text.remove_prefix(std::min(part.size() + 1, text.size()));
  return PercentDecoded(part).value_or("");
}

std::optional<Connection> ReadForm(std::string_view text) {
  Connection connection;
  const std::string when = TakePart(text);
  std::from_chars(when.data(), when.data() + when.size(), connection.when);
  Site& site = connection.site;
  site.passive = TakePart(text) == "P";
  site.host = TakePart(text);
  site.port = PortFrom(TakePart(text));
  site.user = TakePart(text);
  site.path = TakePart(text);
  site.security = SecurityFrom(PortFrom(TakePart(text))).value_or(Security::Automatic);
  site.encoding = TakePart(text);
  site.clientCertificate = TakePart(text);
  site.connections = std::clamp<std::int32_t>(PortFrom(TakePart(text)), 0, Site::kMostConnections);
  if (site.host.empty() || site.port == 0) return {};
  return connection;
}

std::vector<Connection> ReadAll(const PreferenceSet& set) {
  std::vector<Connection> connections;
  for (std::size_t i = 0; i < RecentStore::kMost; ++i) {
    auto connection = ReadForm(GetString(set, std::to_string(i).c_str(), ""));
    if (connection.has_value()) connections.push_back(std::move(*connection));
  }
  return connections;
}

Text WriteAll(PreferenceSet& set, const std::vector<Connection>& connections) {
  for (std::size_t i = 0; i < RecentStore::kMost; ++i) {
    const std::string name = std::to_string(i);
    if (i < connections.size()) {
      SaveString(set, name.c_str(), StoredForm(connections[i]));
    } else {
      PREFDelete(set.Handle(), name.c_str());
    }
  }
  set.Save();
  return set.Finish();
}

std::string UserOf(const Site& site) {
  return site.user == "anonymous" ? "" : site.user;
}

bool SameLogin(const Site& one, const Site& other) {
  return one.host == other.host && one.port == other.port && UserOf(one) == UserOf(other);
}

bool SameDirectory(const Site& one, const Site& other) {
  const auto bare = [](std::string_view path) {
    while (path.ends_with('/')) path.remove_suffix(1);
    return path;
  };
  return bare(one.path) == bare(other.path);
}

}  // namespace

std::vector<Connection> RecentStore::Read() {
  return ReadAll(PreferenceSet(kSet));
}

Text RecentStore::Add(const Site& site, std::int64_t when) {
  const Connection added{.site = {.host = site.host,
                                  .port = site.port,
                                  .user = UserOf(site),
                                  .path = site.path,
                                  .passive = site.passive,
                                  .security = site.security,
                                  .encoding = site.encoding,
                                  .clientCertificate = site.clientCertificate,
                                  .connections = site.connections},
                         .when = when};
  PreferenceSet set(kSet, PreferenceSet::Saving::Gathered);
  if (set.Handle() == nullptr) return set.Finish();
  std::vector<Connection> connections = ReadAll(set);
  std::erase_if(connections, [&added](const Connection& other) {
    return SameLogin(added.site, other.site) && SameDirectory(added.site, other.site);
  });
  connections.insert(connections.begin(), added);
  if (connections.size() > kMost) connections.resize(kMost);
  return WriteAll(set, connections);
}

Text RecentStore::Forget() {
  PreferenceSet set(kSet, PreferenceSet::Saving::Gathered);
  if (set.Handle() == nullptr) return set.Finish();
  return WriteAll(set, {});
}

const Shortcut* RecentStore::ShortcutOf(const Site& site, const std::vector<Shortcut>& shortcuts) {
  const Shortcut* found = nullptr;
  for (const Shortcut& shortcut : shortcuts) {
    if (!SameLogin(shortcut.site, site)) continue;
    if (SameDirectory(shortcut.site, site)) return &shortcut;
    if (found == nullptr) found = &shortcut;
  }
  return found;
}

}  // namespace corvane
