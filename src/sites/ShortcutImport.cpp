#include "sites/ShortcutImport.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <optional>
#include <set>
#include <tuple>

#include "sites/ImportFormats.h"
#include "sites/SecretStore.h"
#include "sites/ShortcutStore.h"
#include "util/ErrorText.h"
#include "util/UniqueFd.h"

namespace corvane {
namespace {

constexpr std::string_view kBlanks = " \t\r\n";
constexpr std::string_view kNoLine("\r\n\0", 3);  // what no command can hold

ShortcutImport TooLong() {
  return {.failure = Text("The file is longer than 16 MB: it is no list of connections.")};
}

// What stands in front of everything else: the mark of UTF-8, blanks, and the lines of a comment.
std::string_view Beginning(std::string_view bytes) {
  if (bytes.starts_with("\xEF\xBB\xBF")) bytes.remove_prefix(3);
  for (;;) {
    bytes.remove_prefix(std::min(bytes.find_first_not_of(kBlanks), bytes.size()));
    if (!bytes.starts_with('#')) return bytes;
    bytes.remove_prefix(std::min(bytes.find('\n'), bytes.size()));
  }
}

bool IsXml(std::string_view bytes) {
  return bytes.starts_with('<') || bytes.starts_with("\xFF\xFE") || bytes.starts_with("\xFE\xFF");
}

bool IsNetrc(std::string_view text) {
  const std::string_view word = text.substr(0, text.find_first_of(kBlanks));
  return word == "machine" || word == "default" || word == "macdef";
}

std::string ToOneLine(std::string text) {
  std::ranges::replace_if(
      text, [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; }, ' ');
  return text;
}

bool Holds(const std::string& text, std::string_view any) {
  return text.find_first_of(any) != std::string::npos;
}

Text WhyNoHost(const std::string& host) {
  if (host.empty()) return Text("It names no server.");
  const bool wrong = std::ranges::any_of(host, [](char c) {
    return static_cast<unsigned char>(c) <= ' ' || c == 0x7F || c == '/' || c == '@';
  });
  return wrong ? Text("The name of its server has a character that no name can have.") : Text();
}

// What the stored line has no form for goes, with a note, or refuses the whole.
void Fit(ImportedShortcut& entry, bool keyring) {
  Shortcut& shortcut = entry.shortcut;
  Site& site = shortcut.site;
  const auto note = [&entry](const Text& text) { entry.notes.push_back(text); };
  const std::string label = ToOneLine(shortcut.label);
  shortcut.label = label;
  std::ranges::replace(shortcut.label, '*', '-');
  if (shortcut.label != label) note(Text("The “*” in its label becomes a “-”."));
  shortcut.folder = CleanPath(shortcut.folder);
  entry.refusal = WhyNoHost(site.host);
  if (!entry.refusal.IsEmpty()) return;
  if (Holds(site.user, ":@/") || Holds(site.user, kNoLine)) {
    entry.refusal = Text("Its username holds a character that a shortcut cannot hold.");
    return;
  }
  if (!site.path.empty() && !site.path.starts_with('/')) site.path.insert(0, "/");
  if (Holds(site.path, ":") || Holds(site.path, kNoLine)) {
    site.path.clear();
    note(Text("Its directory holds a character that a shortcut cannot hold, and is left out."));
  }
  if (site.port == 0) note(Text("Its port is no number from 1 to 65535."));
  Shortcut line = shortcut;
  if (keyring && IsSecret(site)) line.site.keptPassword = true;
  const bool sendable = !Holds(site.password, kNoLine);
  if (sendable && ShortcutStore::ComesBack(line) == ShortcutStore::Return::Whole) return;
  line.site.keptPassword = true;
  if (ShortcutStore::ComesBack(line) != ShortcutStore::Return::Whole) {
    entry.refusal = Text("Its address holds a character that a shortcut cannot hold.");
    return;
  }
  site.password.clear();
  site.asksPassword = true;
  note(Text("Its password holds a character that a shortcut cannot hold: it is asked for."));
}

std::string UserOf(const Site& site) {
  return site.user == "anonymous" ? "" : site.user;
}

std::string_view Bare(std::string_view path) {
  while (path.ends_with('/')) path.remove_suffix(1);
  return path;
}

}  // namespace

ShortcutImport Damaged(const Text& how) {
  return {.failure = Text("The file is damaged: %1", how)};
}

ShortcutImport TooMany() {
  return {.failure = Text("The file holds more than 10,000 connections.")};
}

Text OtherProtocol(std::string_view scheme) {
  if (scheme == "sftp" || scheme == "fish")
    return Text("It is reached over SSH, which Corvane does not speak.");
  return Text("It is reached over a protocol that Corvane does not speak.");
}

ShortcutImport ShortcutImport::Read(std::string_view bytes) {
  if (bytes.size() > kMostBytes) return TooLong();
  const std::string_view text = Beginning(bytes);
  if (IsXml(text)) return ReadSiteManager(bytes);
  if (text.empty()) return {.failure = Text("The file is empty.")};
  if (text.find('\0') == std::string_view::npos) {
    if (AreShortcutLines(text)) return ReadShortcutLines(text);
    if (IsNetrc(text)) return ReadNetrc(text);
    const std::string_view line = text.substr(0, text.find('\n'));
    const std::size_t blank = line.find_first_of(" \t");
    const bool named = blank != std::string_view::npos && blank > 0;
    if (named && line.find("://", blank) != std::string_view::npos) return ReadBookmarks(text);
  }
  return {.failure = Text("This is no list of connections that Corvane can read.")};
}

ShortcutImport ShortcutImport::ReadFile(const std::string& path) {
  const auto failed = [](int error) {
    return ShortcutImport{.failure = Text("The file cannot be read: %1", ErrorText(error))};
  };
  // Opening a pipe would wait for who writes into it.
  const UniqueFd file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  struct stat status {};
  if (!file || ::fstat(file.get(), &status) != 0) return failed(errno);
  if (S_ISDIR(status.st_mode)) return failed(EISDIR);
  if (!S_ISREG(status.st_mode)) return failed(EINVAL);
  if (static_cast<std::size_t>(status.st_size) > kMostBytes) return TooLong();
  std::string bytes;
  std::string piece(std::size_t{64} << 10U, '\0');
  while (bytes.size() <= kMostBytes) {
    const ssize_t got = ::read(file.get(), piece.data(), piece.size());
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) return failed(errno);
    if (got == 0) break;
    bytes.append(piece, 0, static_cast<std::size_t>(got));
  }
  return Read(bytes);
}

void ShortcutImport::FitToStore(bool keyring) {
  for (ImportedShortcut& entry : entries) {
    if (entry.refusal.IsEmpty()) Fit(entry, keyring);
  }
}

void ShortcutImport::MarkKnown(const std::vector<Shortcut>& there) {
  using Place = std::tuple<std::string, std::uint16_t, std::string, std::string>;
  std::set<Place> places;
  const auto place = [](const Site& site) {
    return Place(site.host, site.port, UserOf(site), Bare(site.path));
  };
  for (const Shortcut& shortcut : there) places.insert(place(shortcut.site));
  for (ImportedShortcut& entry : entries) {
    if (entry.refusal.IsEmpty()) entry.known = !places.insert(place(entry.shortcut.site)).second;
  }
}

}  // namespace corvane
