// Whatever stands in the address field, on the command line or in a drop is a URL or none, and any
// line is a saved connection or none: what was read is written as the same again. The lines behind
// the first stand beside the saved connection, and name folders.
#include "Fuzz.h"
#include "sites/ParseUrl.h"
#include "sites/ShortcutFolders.h"
#include "sites/SiteExtras.h"
#include "sites/SiteOf.h"
#include "util/LocalUrl.h"

namespace {

using namespace corvane;

void CheckUrl(const std::optional<Url>& url) {
  if (!url) return;
  Check(!url->host.empty() && url->port != 0 && url->path != "/");
  const Site site = SiteOf(*url);
  for (const std::string& text : {url->Written(), UrlOf(site, url->path).Written()}) {
    const auto again = Url::Read(text);
    Check(again && again->host == url->host && again->path == url->path);
    Check(again->port.value_or(again->UsualPort()) == url->port.value_or(url->UsualPort()));
  }
}

void CheckShortcut(Shortcut shortcut, std::string_view beside, std::string_view rest) {
  Shortcut again = shortcut;
  shortcut.site.asksPassword = true;
  const std::string login = ExtrasText(shortcut);
  shortcut = again;
  TakeExtras(login.substr(0, login.rfind(' ') + 1).append(beside), shortcut);
  TakeExtras(ExtrasText(shortcut), again);
  Check(again == shortcut && CleanPath(shortcut.folder) == shortcut.folder);
  const std::vector<ShortcutFolder> folders = WholeFolders(FoldersFrom(rest), {shortcut});
  Check(FoldersFrom(FoldersText(folders)) == folders);
  Check(WholeFolders(folders, {shortcut}) == folders);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string_view text(reinterpret_cast<const char*>(data), size);
  CheckUrl(Url::Read(text));
  CheckUrl(Url::ReadAddress(text));
  Check(!Url::Read(text) || Url::IsMeant(text));
  if (const auto path = LocalPathOf(text))
    Check(path->starts_with(FolderOf(*path)) && path->find('\0') == std::string::npos);
  const auto shortcut = ParseUrl(Take(text), false);
  const std::string_view beside = Take(text);
  if (shortcut) CheckShortcut(*shortcut, beside, text);
  return 0;
}
