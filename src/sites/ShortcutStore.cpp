#include "sites/ShortcutStore.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <functional>
#include <limits>

#include "settings/Access.h"
#include "sites/ParseUrl.h"
#include "sites/SecretStore.h"
#include "sites/ShortcutFolders.h"
#include "sites/SiteExtras.h"

namespace corvane {
namespace {

constexpr const char* kSet = "shortcuts";
constexpr const char* kLast = "howmany";  // the number of the last entry
constexpr const char* kFolders = "folders";
// Stored together with the converted entries, and there until the settings are known to say so too.
constexpr const char* kConverted = "converted";
constexpr auto kGathered = PreferenceSet::Saving::Gathered;

// Beside the line of an entry: what the line has no place for.
std::string ExtrasName(std::int32_t index) {
  return "more " + std::to_string(index);
}

std::optional<Shortcut> ReadEntry(const PreferenceSet& set, std::int32_t index) {
  auto shortcut = ParseUrl(GetString(set, std::to_string(index).c_str(), ""), false);
  if (shortcut.has_value()) {
    TakeExtras(GetString(set, ExtrasName(index).c_str(), ""), *shortcut);
  }
  return shortcut;
}

void WriteEntry(PreferenceSet& set, std::int32_t index, const Shortcut& shortcut) {
  SaveString(set, std::to_string(index).c_str(), ShortcutStore::StoredForm(shortcut));
  const std::string extras = ExtrasText(shortcut);
  if (extras.empty()) {
    PREFDelete(set.Handle(), ExtrasName(index).c_str());
  } else {
    SaveString(set, ExtrasName(index).c_str(), extras);
  }
}

void StoreEntry(PreferenceSet& set, std::int32_t index, const Shortcut& shortcut) {
  SaveInt32(set, kLast, index);
  WriteEntry(set, index, shortcut);
}

void WriteFolders(PreferenceSet& set, const std::vector<ShortcutFolder>& folders) {
  if (folders.empty()) {
    PREFDelete(set.Handle(), kFolders);
  } else {
    SaveString(set, kFolders, FoldersText(folders));
  }
}

// The numbers from `first` to `last` under which entries are stored, readable or not. Goes by what
// is there, because `last` may be any number.
std::vector<std::int32_t> Numbers(const PreferenceSet& set, std::int32_t first, std::int32_t last) {
  std::vector<std::int32_t> numbers;
  PREFDataCookie* cookie = nullptr;
  std::array<char, 32> name{};
  std::uint32_t type = 0;
  while (PREFListData(set.Handle(), &cookie, name.data(), std::ssize(name), &type) == 0) {
    const std::string_view text(name.data());
    std::int32_t number = -1;
    const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    const bool whole = error == std::errc() && stop == text.data() + text.size();
    if (whole && type == "BYTE"_what && number >= first && number <= last)
      numbers.push_back(number);
  }
  PREFDisposeDataCookie(cookie);
  return numbers;
}

constexpr std::int32_t kNoLast = std::numeric_limits<std::int32_t>::max();

// Takes the password out of the lines from number `first` on for which `matches` is true.
void TakeOut(PreferenceSet& set, std::int32_t first,
             const std::function<bool(const Site&)>& matches) {
  for (const std::int32_t number : Numbers(set, first, kNoLast)) {
    auto shortcut = ReadEntry(set, number);
    if (!shortcut.has_value() || !IsSecret(shortcut->site) || !matches(shortcut->site)) continue;
    shortcut->site.password.clear();
    shortcut->site.keptPassword = !shortcut->site.asksPassword;
    WriteEntry(set, number, *shortcut);
  }
}

// `last` is what the store says; the entries that are there end the walk.
std::vector<Shortcut> ReadAll(const PreferenceSet& set, std::int32_t last) {
  std::vector<Shortcut> shortcuts;
  for (std::int32_t i = 0; i <= last; ++i) {
    auto shortcut = ReadEntry(set, i);
    if (!shortcut.has_value()) break;
    shortcuts.push_back(std::move(*shortcut));
  }
  return shortcuts;
}

// What the set holds up to the entry `last`.
ShortcutStore::List ReadList(PreferenceSet& set, std::int32_t last) {
  ShortcutStore::List list{ReadAll(set, last)};
  list.folders = WholeFolders(FoldersFrom(GetString(set, kFolders, "")), list.shortcuts);
  list.failure = set.Finish();
  return list;
}

Shortcut FirstEntry() {
  return {.label = "Be Inc.",
          .site = {.host = "ftp.funet.fi",
                   .user = "anonymous",
                   .password = "guest@host.in",
                   .path = "/pub/contrib/"}};
}

}  // namespace

std::string ShortcutStore::StoredForm(const Shortcut& shortcut) {
  const Site& site = shortcut.site;
  const bool elsewhere = site.keptPassword || site.asksPassword;
  std::string text = site.passive ? "P" : "A";
  text += shortcut.label + "*ftp://" + site.user + ":" + (elsewhere ? "" : site.password) + "@" +
          site.host + ":" + std::to_string(site.port);
  if (!site.path.starts_with('/')) text += '/';
  return text + site.path;
}

ShortcutStore::Return ShortcutStore::ComesBack(const Shortcut& shortcut) {
  auto stored = ParseUrl(StoredForm(shortcut), false);
  if (!stored.has_value()) return Return::Nothing;
  const Site& site = shortcut.site;
  Shortcut wanted{.label = shortcut.label,
                  .site = {.host = site.host,
                           .port = site.port,
                           .user = site.user,
                           .password = site.password,
                           .path = site.path,
                           .passive = site.passive}};
  if (site.keptPassword || site.asksPassword) wanted.site.password.clear();
  if (!wanted.site.path.starts_with('/')) wanted.site.path.insert(0, "/");
  if (wanted.site.user == "anonymous") stored->site.password = wanted.site.password;
  return *stored == wanted ? Return::Whole : Return::Changed;
}

ShortcutStore::List ShortcutStore::ReadForMenu() {
  {
    PreferenceSet set(kSet);
    const std::int32_t last = GetInt32(set, kLast, -1);
    if (set.Handle() == nullptr || last != -1) return ReadList(set, last);
  }
  PreferenceSet set(kSet, kGathered);
  // Another program may have been first.
  const std::int32_t last = GetInt32(set, kLast, -1);
  if (set.Handle() == nullptr || last != -1) return ReadList(set, last);
  const Shortcut first = FirstEntry();
  SaveString(set, "default", StoredForm(first));
  StoreEntry(set, 0, first);
  return {{first}, set.Finish()};
}

bool ShortcutStore::AreTheFirst(const std::vector<Shortcut>& shortcuts) {
  return shortcuts.size() == 1 && (shortcuts[0] == FirstEntry() ||
                                   shortcuts[0] == ParseUrl(StoredForm(FirstEntry()), false));
}

ShortcutStore::List ShortcutStore::ReadForList() {
  PreferenceSet set(kSet);
  return ReadList(set, GetInt32(set, kLast, 0));
}

std::int32_t ShortcutStore::CountOutOfReach() {
  const PreferenceSet set(kSet);
  const std::int32_t last = GetInt32(set, kLast, -1);
  if (last < 0) return 0;
  const auto end = static_cast<std::int32_t>(ReadAll(set, last).size());
  return static_cast<std::int32_t>(Numbers(set, end, last).size());
}

std::optional<Shortcut> ShortcutStore::Read(std::int32_t index) {
  return ReadEntry(PreferenceSet(kSet), index);
}

void ShortcutStore::FillPassword(Site& site) {
  for (const Shortcut& shortcut : ReadForList().shortcuts) {
    const Site& saved = shortcut.site;
    const bool anonymous = saved.user.empty() && site.user == "anonymous";
    const bool same = saved.host == site.host && saved.port == site.port &&
                      (anonymous || saved.user == site.user) && saved.path == site.path;
    if (!same || saved.password.empty()) continue;
    site.password = saved.password;
    return;
  }
}

ShortcutStore::Added ShortcutStore::Add(const Shortcut& shortcut) {
  PreferenceSet set(kSet, kGathered);
  const std::int32_t last = GetInt32(set, kLast, -1);
  if (last < 0) {
    Text failure = set.Finish();
    return {-1, failure.IsEmpty() ? Text("There is no list of shortcuts to add it to.") : failure};
  }
  const auto end = static_cast<std::int32_t>(ReadAll(set, last).size());
  const bool within = end <= last;
  const std::string unreadable = within ? GetString(set, std::to_string(end).c_str(), "") : "";
  const bool longer = !within || !unreadable.empty();
  if (longer && last == std::numeric_limits<std::int32_t>::max())
    return {-1, Text("The list is full.")};
  if (!unreadable.empty()) SaveString(set, std::to_string(last + 1).c_str(), unreadable);
  StoreEntry(set, end, shortcut);
  SaveInt32(set, kLast, longer ? last + 1 : last);
  return {end, set.Finish(), within};
}

Text ShortcutStore::SaveAll(const std::vector<Shortcut>& shortcuts,
                            const std::vector<ShortcutFolder>& folders) {
  PreferenceSet set(kSet, kGathered);
  WriteFolders(set, folders);
  if (GetInt32(set, kLast, 0) >= 0) PREFDelete(set.Handle(), "1");
  SaveInt32(set, "homany", -1);
  SaveInt32(set, kLast, static_cast<std::int32_t>(shortcuts.size()));
  set.Save();
  std::int32_t index = 0;
  for (const Shortcut& shortcut : shortcuts) StoreEntry(set, index++, shortcut);
  TakeOut(set, index, [&shortcuts](const Site& site) {
    return std::ranges::any_of(shortcuts, [&site](const Shortcut& shortcut) {
      return shortcut.site.keptPassword && KeyOf(shortcut.site) == KeyOf(site);
    });
  });
  return set.Finish();
}

void ShortcutStore::KeepOpen(const std::vector<ShortcutFolder>& seen) {
  PreferenceSet set(kSet, kGathered);
  if (set.Handle() == nullptr) return;
  const std::vector<Shortcut> shortcuts = ReadAll(set, GetInt32(set, kLast, -1));
  auto folders = WholeFolders(FoldersFrom(GetString(set, kFolders, "")), shortcuts);
  const auto before = folders;
  for (ShortcutFolder& folder : folders) {
    const auto now = std::ranges::find(seen, folder.path, &ShortcutFolder::path);
    if (now != seen.end()) folder.open = now->open;
  }
  if (folders != before) WriteFolders(set, folders);
}

Text ShortcutStore::TakeOutPassword(const Site& kept) {
  PreferenceSet set(kSet, kGathered);
  if (set.Handle() != nullptr) {
    TakeOut(set, 0, [&kept](const Site& site) {
      return KeyOf(site) == KeyOf(kept) && site.password == kept.password;
    });
  }
  return set.Finish();
}

std::int32_t ShortcutStore::ConvertShortcuts() {
  PreferenceSet set(kSet, kGathered);
  const std::int32_t last = GetInt32(set, kLast, -1);
  if (last == -1) return set.Finish().IsEmpty() ? -1 : 0;
  if (GetInt32(set, kConverted, 0) != 0) return 1;
  SaveInt32(set, kConverted, 1);
  for (std::int32_t i = 0; i <= last; ++i) {
    const std::string name = std::to_string(i);
    const std::string entry = GetString(set, name.c_str(), "");
    if (entry.empty()) break;
    SaveString(set, name.c_str(), "A" + entry);
  }
  set.Save();
  return set.Finish().IsEmpty() ? 1 : 0;
}

void ShortcutStore::EndConversion() {
  PreferenceSet set(kSet, kGathered);
  if (PREFDelete(set.Handle(), kConverted) == 0) set.Save();
}

}  // namespace corvane
