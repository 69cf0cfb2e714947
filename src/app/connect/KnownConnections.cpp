#include "app/connect/KnownConnections.h"

#include <algorithm>

#include "sites/RecentStore.h"
#include "sites/ShortcutStore.h"

namespace corvane {

std::vector<KnownConnection> KnownConnections() {
  const std::vector<Shortcut> shortcuts = ShortcutStore::ReadForMenu().shortcuts;
  std::vector<KnownConnection> known;
  for (const RecentStore::Connection& recent : RecentStore::Read()) {
    Shortcut connection{.site = recent.site};
    if (const Shortcut* saved = RecentStore::ShortcutOf(recent.site, shortcuts)) {
      connection.label = saved->label;
      connection.site.password = saved->site.password;
      connection.site.asksPassword = saved->site.asksPassword;
      connection.site.keptPassword = saved->site.keptPassword;
    }
    known.push_back({std::move(connection), recent.when});
  }
  const std::size_t recent = known.size();
  for (const Shortcut& shortcut : shortcuts) {
    const std::string place = PlaceOf(shortcut.site);
    const bool there = std::any_of(
        known.begin(), known.begin() + static_cast<std::ptrdiff_t>(recent),
        [&place](const KnownConnection& one) { return PlaceOf(one.connection.site) == place; });
    if (!there && shortcut.site.port != 0) known.push_back({shortcut});
  }
  return known;
}

std::string PlaceOf(const Site& site) {
  std::string place;
  if (!site.user.empty() && site.user != "anonymous") place = site.user + "@";
  place += site.host;
  if (site.port != UsualPort(site.security)) place += ":" + std::to_string(site.port);
  std::string_view path = site.path;
  while (path.ends_with('/')) path.remove_suffix(1);
  return place.append(path);
}

}  // namespace corvane
