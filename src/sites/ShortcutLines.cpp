#include "sites/ShortcutLines.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <optional>

#include "sites/ImportFormats.h"
#include "sites/SecretStore.h"
#include "sites/SiteOf.h"
#include "util/ErrorText.h"
#include "util/Percent.h"
#include "util/PortFrom.h"
#include "util/UniqueFd.h"

namespace corvane {
namespace {

constexpr std::string_view kHead = "Corvane shortcuts ";
constexpr std::string_view kVersion = "1";
constexpr std::string_view kEnd = "end";
constexpr std::string_view kFolderLine = "folder ";

// What stands in a line behind its URL: "name=value", or the name alone.
std::string Word(std::string_view name, std::string_view value) {
  return " " + std::string(name) + "=" + PercentEncoded(value, "/");
}

Site SiteFrom(const Url& url) {
  Site site = SiteOf(url);
  if (url.scheme == Url::Scheme::Ftp) site.security = Security::Automatic;
  site.port = url.port.value_or(UsualPort(site.security));
  if (site.path.empty()) site.path = "/";
  return site;
}

std::string UrlFor(const Site& site, bool password) {
  std::string text = UrlOf(site, site.path).Written();
  if (site.user.empty()) return text;
  std::string login = PercentEncoded(site.user, "");
  if (password && !site.password.empty()) login += ":" + PercentEncoded(site.password, "");
  return text.insert(text.find("://") + 3, login + "@");
}

std::string Line(const Shortcut& shortcut, bool passwords) {
  const Site& site = shortcut.site;
  std::string text = UrlFor(site, passwords);
  const auto url = Url::Read(text);
  const Site read = url ? SiteFrom(*url) : Site();
  text += Word("label", shortcut.label);
  // What does not come back out of the URL.
  if (read.host != site.host) text += Word("host", site.host);
  if (read.port != site.port) text += Word("port", std::to_string(site.port));
  if (read.user != site.user) text += Word("user", site.user);
  if (read.path != site.path) text += Word("path", site.path);
  if (passwords && read.password != site.password) text += Word("password", site.password);
  if (!shortcut.folder.empty()) text += Word("folder", shortcut.folder);
  if (site.security == Security::Plain) text += " plain";
  if (site.passive) text += " passive";
  if (!site.encoding.empty()) text += Word("encoding", site.encoding);
  if (!site.clientCertificate.empty()) text += Word("certificate", site.clientCertificate);
  if (site.connections > 0) text += Word("connections", std::to_string(site.connections));
  if (site.asksPassword) text += " asks";
  const bool leftOut = !passwords && IsSecret(site);
  if (site.keptPassword || leftOut) text += " kept";
  return text + "\n";
}

std::string_view Take(std::string_view& text, char mark) {
  const std::string_view part = text.substr(0, text.find(mark));
  text.remove_prefix(std::min(part.size() + 1, text.size()));
  return part;
}

// False where the word's value cannot be read. A name that is not known says nothing.
bool TakeWord(std::string_view word, Shortcut& shortcut) {
  const std::string_view name = Take(word, '=');
  const auto value = PercentDecoded(word);
  if (!value.has_value()) return false;
  Site& site = shortcut.site;
  if (name == "label") shortcut.label = *value;
  if (name == "folder") shortcut.folder = CleanPath(*value);
  if (name == "host") site.host = *value;
  if (name == "port") site.port = PortFrom(*value);
  if (name == "user") site.user = *value;
  if (name == "path") site.path = *value;
  if (name == "password") site.password = *value;
  if (name == "plain") site.security = Security::Plain;
  if (name == "passive") site.passive = true;
  if (name == "encoding") site.encoding = *value;
  if (name == "certificate") site.clientCertificate = *value;
  if (name == "connections")
    site.connections = std::clamp<std::int32_t>(PortFrom(*value), 0, Site::kMostConnections);
  if (name == "asks") site.asksPassword = true;
  if (name == "kept") site.keptPassword = true;
  return true;
}

// Takes one line; false where it cannot be read.
bool TakeLine(std::string_view line, ShortcutImport& import) {
  if (line.starts_with(kFolderLine)) {
    const auto folders = FoldersFrom(line.substr(kFolderLine.size()));
    import.folders.insert(import.folders.end(), folders.begin(), folders.end());
    return !folders.empty();
  }
  ImportedShortcut entry;
  const auto url = Url::Read(Take(line, ' '));
  if (url.has_value()) entry.shortcut.site = SiteFrom(*url);
  while (!line.empty()) {
    if (!TakeWord(Take(line, ' '), entry.shortcut)) return false;
  }
  if (!url.has_value() && entry.shortcut.site.host.empty()) return false;
  import.entries.push_back(std::move(entry));
  return true;
}

int WriteAll(int file, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = ::write(file, bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) return errno;
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
  return ::fsync(file) == 0 ? 0 : errno;
}

}  // namespace

std::string WrittenShortcuts(const std::vector<Shortcut>& shortcuts,
                             const std::vector<ShortcutFolder>& folders, bool passwords) {
  std::string text = std::string(kHead).append(kVersion) + "\n";
  for (const ShortcutFolder& folder : folders) {
    text.append(kFolderLine).append(FoldersText({folder})) += "\n";
  }
  for (const Shortcut& shortcut : shortcuts) text += Line(shortcut, passwords);
  return text.append(kEnd) + "\n";
}

bool AreShortcutLines(std::string_view text) {
  return text.starts_with(kHead);
}

ShortcutImport ReadShortcutLines(std::string_view text) {
  ShortcutImport import{.source = Text("shortcuts that Corvane has written")};
  bool ended = false;
  for (int number = 1; !text.empty() && !ended; ++number) {
    std::string_view line = Take(text, '\n');
    if (line.ends_with('\r')) line.remove_suffix(1);
    ended = line == kEnd;
    if (ended || line.empty()) continue;
    if (number == 1) {
      if (line.substr(kHead.size()) == kVersion) continue;
      return {.failure = Text("The file was written by a newer version of Corvane.")};
    }
    if (!TakeLine(line, import)) return Damaged(Text("Line %1 cannot be read.", number));
    if (std::max(import.entries.size(), import.folders.size()) > ShortcutImport::kMostEntries)
      return TooMany();
  }
  return ended ? import : Damaged(Text("Its end is missing."));
}

Text WritePrivateFile(const std::string& path, const std::string& bytes) {
  const auto failed = [](int error) {
    return Text("The file cannot be written: %1", ErrorText(error));
  };
  std::string part = path + ".XXXXXX";
  const UniqueFd file(::mkostemp(part.data(), O_CLOEXEC));  // of mode 0600
  if (!file) return failed(errno);
  int error = WriteAll(file.get(), bytes);
  if (error == 0 && ::rename(part.c_str(), path.c_str()) != 0) error = errno;
  if (error == 0) return {};
  ::unlink(part.c_str());
  return failed(error);
}

}  // namespace corvane
