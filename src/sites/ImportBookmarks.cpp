// Bookmarks: in each line a name and a URL.

#include <algorithm>
#include <string>

#include "sites/ImportFormats.h"
#include "sites/SiteOf.h"
#include "util/Url.h"

namespace corvane {
namespace {

constexpr std::string_view kBlanks = " \t\r";

std::string_view Trimmed(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
  return text.substr(0, text.find_last_not_of(kBlanks) + 1);
}

std::string_view SchemeOf(std::string_view address) {
  const std::size_t end = address.find("://");
  return end == std::string_view::npos ? std::string_view() : address.substr(0, end);
}

ImportedShortcut ReadLine(std::string_view line) {
  const std::size_t blank = std::min(line.find_first_of(kBlanks), line.size());
  const std::string_view address = Trimmed(line.substr(blank));
  ImportedShortcut entry{.shortcut = {.label = std::string(line.substr(0, blank))}};
  const std::string_view scheme = SchemeOf(address);
  if (!scheme.empty() && !Url::IsMeant(address)) {
    entry.refusal = OtherProtocol(scheme);
    return entry;
  }
  auto url = Url::ReadAddress(address);
  if (!url.has_value()) {
    entry.refusal = Text("Its address cannot be read.");
    return entry;
  }
  // An absolute path is written with an escaped slash of its own.
  if (url->path.starts_with("//")) url->path.erase(0, 1);
  Site& site = entry.shortcut.site;
  site = SiteOf(*url);
  site.passive = true;
  const bool named = !site.user.empty() && site.user != "anonymous";
  if (named && site.password.empty()) site.keptPassword = true;  // asked for
  if (!named) site.password.clear();
  return entry;
}

}  // namespace

ShortcutImport ReadBookmarks(std::string_view text) {
  ShortcutImport import{.source = Text("bookmarks of lftp")};
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    const std::string_view line = Trimmed(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
    if (line.empty() || line.starts_with('#')) continue;
    import.entries.push_back(ReadLine(line));
    if (import.entries.size() > ShortcutImport::kMostEntries) return TooMany();
  }
  return import;
}

}  // namespace corvane
