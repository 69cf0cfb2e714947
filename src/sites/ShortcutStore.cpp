#include "sites/ShortcutStore.h"

#include <array>
#include <charconv>
#include <limits>

#include "settings/Access.h"
#include "sites/ParseUrl.h"

namespace corvane {
namespace {

constexpr const char* kSet = "shortcuts";
constexpr const char* kLast = "howmany";  // the number of the last entry
// Stored together with the converted entries, and there until the settings are known to say so too.
constexpr const char* kConverted = "converted";
constexpr auto kGathered = PreferenceSet::Saving::Gathered;

std::optional<Shortcut> ReadEntry(const PreferenceSet& set, std::int32_t index) {
  return ParseUrl(GetString(set, std::to_string(index).c_str(), ""), false);
}

void StoreEntry(PreferenceSet& set, std::int32_t index, const Shortcut& shortcut) {
  SaveInt32(set, kLast, index);
  SaveString(set, std::to_string(index).c_str(), ShortcutStore::StoredForm(shortcut));
}

// How many entries are stored from number `first` to `last`, readable or not. Goes by what is
// there, because `last` may be any number.
std::int32_t CountEntries(const PreferenceSet& set, std::int32_t first, std::int32_t last) {
  std::int32_t count = 0;
  PREFDataCookie* cookie = nullptr;
  std::array<char, 32> name{};
  std::uint32_t type = 0;
  while (PREFListData(set.Handle(), &cookie, name.data(), std::ssize(name), &type) == 0) {
    const std::string_view text(name.data());
    std::int32_t number = -1;
    const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    const bool whole = error == std::errc() && stop == text.data() + text.size();
    if (whole && type == "BYTE"_what && number >= first && number <= last) ++count;
  }
  PREFDisposeDataCookie(cookie);
  return count;
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
  std::string text = site.passive ? "P" : "A";
  text += shortcut.label + "*ftp://" + site.user + ":" + site.password + "@" + site.host + ":" +
          std::to_string(site.port);
  if (!site.path.starts_with('/')) text += '/';
  return text + site.path;
}

ShortcutStore::Return ShortcutStore::ComesBack(const Shortcut& shortcut) {
  auto stored = ParseUrl(StoredForm(shortcut), false);
  if (!stored.has_value()) return Return::Nothing;
  Shortcut wanted = shortcut;
  wanted.site.proxy.reset();
  if (!wanted.site.path.starts_with('/')) wanted.site.path.insert(0, "/");
  if (wanted.site.user == "anonymous") stored->site.password = wanted.site.password;
  return *stored == wanted ? Return::Whole : Return::Changed;
}

ShortcutStore::List ShortcutStore::ReadForMenu() {
  {
    PreferenceSet set(kSet);
    const std::int32_t last = GetInt32(set, kLast, -1);
    if (set.Handle() == nullptr || last != -1) return {ReadAll(set, last), set.Finish()};
  }
  PreferenceSet set(kSet, kGathered);
  // Another program may have been first.
  const std::int32_t last = GetInt32(set, kLast, -1);
  if (set.Handle() == nullptr || last != -1) return {ReadAll(set, last), set.Finish()};
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
  return {ReadAll(set, GetInt32(set, kLast, 0)), set.Finish()};
}

std::int32_t ShortcutStore::CountOutOfReach() {
  const PreferenceSet set(kSet);
  const std::int32_t last = GetInt32(set, kLast, -1);
  if (last < 0) return 0;
  return CountEntries(set, static_cast<std::int32_t>(ReadAll(set, last).size()), last);
}

std::optional<Shortcut> ShortcutStore::Read(std::int32_t index) {
  return ReadEntry(PreferenceSet(kSet), index);
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

Text ShortcutStore::SaveAll(const std::vector<Shortcut>& shortcuts) {
  PreferenceSet set(kSet, kGathered);
  if (GetInt32(set, kLast, 0) >= 0) PREFDelete(set.Handle(), "1");
  SaveInt32(set, "homany", -1);
  SaveInt32(set, kLast, static_cast<std::int32_t>(shortcuts.size()));
  set.Save();
  std::int32_t index = 0;
  for (const Shortcut& shortcut : shortcuts) StoreEntry(set, index++, shortcut);
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
