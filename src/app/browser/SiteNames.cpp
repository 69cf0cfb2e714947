#include "app/browser/SiteNames.h"

#include "app/browser/MWindow.h"
#include "app/shared/ScreenText.h"
#include "remote/RemotePath.h"

namespace corvane {

QString LastName(const std::string& directory, const std::string& encoding) {
  const std::string name = SplitPath(WithoutTrailingSlash(directory)).second;
  return ToText(name.empty() ? directory : name, encoding);
}

std::string SiteKey(const Site& site) {
  return site.user + '@' + site.host + ':' + std::to_string(site.port);
}

BrowserTitle TitleFor(const Site& site, const QString& place) {
  return {.place = place,
          .user = site.user == "anonymous" ? QString() : ToText(site.user),
          .host = ToText(site.host),
          .port = site.port};
}

QString MissingLetters(const QString& name, const Site& site) {
  return MWindow::tr("\"%1\" has letters that the encoding of this site, %2, does not have.")
      .arg(name, ToText(site.encoding));
}

QString LogTitle(const Site& site) {
  return MWindow::tr("Log Window: %1").arg(ToText(site.host));
}

}  // namespace corvane
