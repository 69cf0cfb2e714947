#include "settings/ShortcutStore.h"

#include <limits>

#include "settings/Access.h"
#include "util/ParseUrl.h"

namespace corvane {
namespace {

constexpr const char* kSet = "shortcuts";
constexpr const char* kLast = "howmany";  // the number of the last entry
constexpr auto kGathered = PreferenceSet::Saving::Gathered;

std::optional<Shortcut> ReadEntry(const PreferenceSet& set, std::int32_t index) {
  return ParseUrl(GetString(set, std::to_string(index).c_str(), ""), false);
}

void StoreEntry(PreferenceSet& set, std::int32_t index, const Shortcut& shortcut) {
  SaveInt32(set, kLast, index);
  SaveString(set, std::to_string(index).c_str(), ShortcutStore::StoredForm(shortcut));
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
          .host = "ftp.funet.fi",
          .user = "anonymous",
          .pass = "guest@host.in",
          .path = "/pub/contrib/",
          .port = "21"};
}

}  // namespace

std::string ShortcutStore::StoredForm(const Shortcut& shortcut) {
  std::string text = shortcut.passive ? "P" : "A";
  text += shortcut.label + "*ftp://" + shortcut.user + ":" + shortcut.pass + "@" + shortcut.host +
          ":" + shortcut.port;
  if (!shortcut.path.starts_with('/')) text += '/';
  return text + shortcut.path;
}

ShortcutStore::Return ShortcutStore::ComesBack(const Shortcut& shortcut) {
  auto stored = ParseUrl(StoredForm(shortcut), false);
  if (!stored.has_value()) return Return::Nothing;
  Shortcut wanted = shortcut;
  if (!wanted.path.starts_with('/')) wanted.path.insert(0, "/");
  if (wanted.user == "anonymous") stored->pass = wanted.pass;
  return *stored == wanted ? Return::Whole : Return::Changed;
}

std::vector<Shortcut> ShortcutStore::ReadForMenu() {
  {
    const PreferenceSet set(kSet);
    const std::int32_t last = GetInt32(set, kLast, -1);
    if (set.Handle() == nullptr || last != -1) return ReadAll(set, last);
  }
  PreferenceSet set(kSet, kGathered);
  // Another program may have been first.
  const std::int32_t last = GetInt32(set, kLast, -1);
  if (set.Handle() == nullptr || last != -1) return ReadAll(set, last);
  const Shortcut first = FirstEntry();
  SaveString(set, "default", StoredForm(first));
  StoreEntry(set, 0, first);
  return {first};
}

ShortcutStore::List ShortcutStore::ReadForList() {
  PreferenceSet set(kSet);
  return {ReadAll(set, GetInt32(set, kLast, 0)), set.Finish()};
}

std::optional<Shortcut> ShortcutStore::Read(std::int32_t index) {
  return ReadEntry(PreferenceSet(kSet), index);
}

ShortcutStore::Added ShortcutStore::Add(const Shortcut& shortcut) {
  PreferenceSet set(kSet, kGathered);
  const std::int32_t last = GetInt32(set, kLast, -1);
  if (last < 0) {
    std::string failure = set.Finish();
    return {-1, failure.empty() ? "There is no list of shortcuts to add it to." : failure};
  }
  const auto end = static_cast<std::int32_t>(ReadAll(set, last).size());
  const bool within = end <= last;
  const std::string unreadable = within ? GetString(set, std::to_string(end).c_str(), "") : "";
  const bool longer = !within || !unreadable.empty();
  if (longer && last == std::numeric_limits<std::int32_t>::max()) return {-1, "The list is full."};
  if (!unreadable.empty()) SaveString(set, std::to_string(last + 1).c_str(), unreadable);
  StoreEntry(set, end, shortcut);
  SaveInt32(set, kLast, longer ? last + 1 : last);
  return {end, set.Finish(), within};
}

std::string ShortcutStore::SaveAll(const std::vector<Shortcut>& shortcuts) {
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
  if (last == -1) return set.Finish().empty() ? -1 : 0;
  for (std::int32_t i = 0; i <= last; ++i) {
    const std::string name = std::to_string(i);
    const std::string entry = GetString(set, name.c_str(), "");
    if (entry.empty()) break;
    SaveString(set, name.c_str(), "A" + entry);
  }
  return set.Finish().empty() ? 1 : 0;
}

}  // namespace corvane
