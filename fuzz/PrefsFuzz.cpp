// Whatever stands in the files of settings and saved connections: they are read, what is stored is
// read again as the same, and a damaged file stays as it is. The input is the items of a set, one a
// line: "iNAME=NUMBER", "sNAME=TEXT", with any other letter bytes of an unknown type; or "#" and
// the bytes of the file itself.
#include <charconv>

#include "Fuzz.h"
#include "kit/Message.h"
#include "settings/PreferenceSet.h"
#include "settings/SettingsTable.h"
#include "settings/StoredSettings.h"
#include "sites/ShortcutStore.h"
#include "support/Files.h"
#include "support/TemporaryDirectory.h"

namespace {

using namespace corvane;

// The file as it stands on the disk: its length and the set's items.
std::string FileOf(std::string_view input) {
  if (input.starts_with('#')) return std::string(input.substr(1));
  Message items;
  while (!input.empty()) {
    std::string_view value = Take(input);
    const char type = value.empty() ? '\0' : value[0];
    value.remove_prefix(type == '\0' ? 0 : 1);
    const std::string_view name = Take(value, "=");
    std::int32_t number = 0;
    std::from_chars(value.data(), value.data() + value.size(), number);
    const std::string_view integer(reinterpret_cast<const char*>(&number), sizeof number);
    (void)(type == 'i'   ? items.AddData(name, "LONG"_what, integer)
           : type == 's' ? items.AddData(name, "BYTE"_what, value)
                         : items.AddData(name, "RAWT"_what, value));
  }
  const std::string bytes = items.Flatten();
  const auto length = static_cast<std::uint32_t>(bytes.size());
  return std::string(reinterpret_cast<const char*>(&length), sizeof length) + bytes;
}

void CheckSettings() {
  const bool readable = StoredSettings::ReadAtStart([] { return true; }).IsEmpty();
  const SettingsValues values = ProcessSettings::Get();
  for (const Setting& setting : AllSettings()) {
    const auto* number = std::get_if<std::int32_t SettingsValues::*>(&setting.variable);
    if (number == nullptr || setting.range.most == 0) continue;
    Check(values.**number >= setting.range.least && values.**number <= setting.range.most);
  }
  const auto store = [] {
    const bool stored = StoredSettings::Apply(StoredSettings::ForEditing()).IsEmpty();
    StoredSettings::Read();
    return stored;
  };
  if (!readable || !store()) return;
  const SettingsValues stored = ProcessSettings::Get();
  Check(store() && ProcessSettings::Get() == stored);
}

void CheckShortcuts() {
  const ShortcutStore::List list = ShortcutStore::ReadForList();
  (void)ShortcutStore::CountOutOfReach();
  for (const Shortcut& shortcut : list.shortcuts)
    if (ShortcutStore::ComesBack(shortcut) != ShortcutStore::Return::Whole) return;
  if (!list.failure.IsEmpty() || !ShortcutStore::SaveAll(list.shortcuts, list.folders).IsEmpty())
    return;
  const ShortcutStore::List again = ShortcutStore::ReadForList();
  Check(again.shortcuts.size() == list.shortcuts.size() && again.folders == list.folders);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const TemporaryDirectory home;
  static const std::filesystem::path settings = [] {
    ::setenv("XDG_CONFIG_HOME", home.Path().c_str(), 1);
    return PathBesideSets("settings", true);
  }();
  const std::filesystem::path shortcuts = settings.parent_path() / "shortcuts";
  const std::string bytes = FileOf({reinterpret_cast<const char*>(data), size});
  for (const auto& path : {settings, shortcuts}) {
    std::filesystem::remove(path);
    Write(path, bytes);
  }
  CheckSettings();
  CheckShortcuts();
  std::uint32_t length = 0;
  if (bytes.copy(reinterpret_cast<char*>(&length), sizeof length) < sizeof length) return 0;
  const std::string_view body = std::string_view(bytes).substr(sizeof length);
  const bool whole = length <= body.size() && Message::Unflatten(body.substr(0, length));
  Check(whole || (Contents(settings) == bytes && Contents(shortcuts) == bytes));
  return 0;
}
