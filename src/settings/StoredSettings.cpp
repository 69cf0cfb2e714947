#include "settings/StoredSettings.h"

#include <algorithm>
#include <cstdint>
#include <map>
#include <utility>

#include "settings/Access.h"
#include "settings/SettingsTable.h"

namespace corvane {
namespace {

constexpr const char* kSet = "settings";
constexpr const char* kProxyPassword = "proxypassword";
constexpr const char* kProxyKept = "proxykept";
constexpr std::int32_t kVersion = 1100;
constexpr std::int32_t kFlaglessShortcuts = 1000;  // versions below have shortcuts without a flag

struct KeptFrame {
  Rect frame;
  bool changed = false;  // and not yet stored
};
std::map<std::string, KeptFrame> frames;  // by their keys
int gathering = 0;

// Shortcuts of an older version that cannot be converted now are converted at the next start.
void BringUpToDate(PreferenceSet& set, const StoredSettings::Conversion& convert) {
  const std::int32_t version = GetInt32(set, "version", kVersion);
  const bool done = version >= kFlaglessShortcuts || convert();
  if (version < kVersion && done) SaveInt32(set, "version", kVersion);
  set.Save();
}

struct ReadValue {
  const PreferenceSet& set;
  const Setting& setting;
  SettingsValues& values;

  void operator()(std::string SettingsValues::*text) const {
    values.*text = GetString(set, setting.key, values.*text);
    if ((values.*text).empty()) values.*text = setting.readsEmpty;
  }
  void operator()(bool SettingsValues::*flag) const {
    values.*flag = GetInt32(set, setting.key, values.*flag ? 1 : 0) != 0;
  }
  void operator()(std::int32_t SettingsValues::*number) const {
    const std::int32_t stored = GetInt32(set, setting.key, values.*number);
    const auto& [least, most, unit, leastText] = setting.range;
    values.*number = most > 0 ? std::clamp(stored, least, most) : stored;
  }
};

/// Stores what the user entered, and puts into `values` what is in force from now on.
struct StoreValue {
  PreferenceSet& set;
  const Setting& setting;
  SettingsValues& values;

  void operator()(std::string SettingsValues::*text) const {
    const std::string entered = values.*text;
    if (entered.empty()) values.*text = setting.emptied;
    SaveString(set, setting.key, setting.storesEmptied ? values.*text : entered);
  }
  void operator()(bool SettingsValues::*flag) const {
    SaveInt32(set, setting.key, values.*flag ? 1 : 0);
  }
  void operator()(std::int32_t SettingsValues::*number) const {
    SaveInt32(set, setting.key, values.*number);
  }
};

// The variable's value goes from one record to the other.
void Copy(const Setting& setting, const SettingsValues& from, SettingsValues& to) {
  std::visit([&](auto variable) { to.*variable = from.*variable; }, setting.variable);
}

void ReadAll(const PreferenceSet& set) {
  SettingsValues values;
  for (const Setting& setting : AllSettings()) {
    std::visit(ReadValue{set, setting, values}, setting.variable);
  }
  ProcessSettings::Set(std::move(values));
}

}  // namespace

void StoredSettings::Read() {
  ReadAll(PreferenceSet(kSet));
}

Text StoredSettings::ReadAtStart(const Conversion& convert) {
  PreferenceSet set(kSet, PreferenceSet::Saving::Gathered);
  BringUpToDate(set, convert);
  ReadAll(set);
  for (const FrameSetting& setting : {kMainFrame, kTransferFrame, kConnectionFrame}) {
    frames[setting.key].frame = GetWindowSetting(set, setting.key, setting.fallback);
  }
  return set.Finish();
}

Text StoredSettings::Apply(const SettingsValues& entered) {
  PreferenceSet set(kSet, PreferenceSet::Saving::Gathered);
  const SettingsValues before = ProcessSettings::Get();
  SettingsValues now = entered;
  for (const Setting& setting : AllSettings()) {
    if (setting.tab == SettingsTab::None) continue;
    std::visit(StoreValue{set, setting, now}, setting.variable);
    if (setting.atNextStart) Copy(setting, before, now);
  }
  // Who empties the field wants the proxy to have no password.
  if (now.proxyKept && !before.proxyPassword.empty() && now.proxyPassword.empty()) {
    now.proxyKept = false;
    SaveInt32(set, kProxyKept, 0);
  }
  ProcessSettings::Set(std::move(now));
  set.Save();
  return set.Finish();
}

bool StoredSettings::HoldsProxyPassword() {
  return !GetString(PreferenceSet(kSet), kProxyPassword, "").empty();
}

Text StoredSettings::TakeOutProxyPassword() {
  PreferenceSet set(kSet, PreferenceSet::Saving::Gathered);
  SaveString(set, kProxyPassword, "");
  SaveInt32(set, kProxyKept, 1);
  SettingsValues now = ProcessSettings::Get();
  now.proxyKept = true;
  ProcessSettings::Set(std::move(now));
  set.Save();
  return set.Finish();
}

SettingsValues StoredSettings::ForEditing() {
  const PreferenceSet set(kSet);
  SettingsValues values = ProcessSettings::Get();
  for (const Setting& setting : AllSettings()) {
    if (setting.atNextStart) std::visit(ReadValue{set, setting, values}, setting.variable);
    const auto* text = std::get_if<std::string SettingsValues::*>(&setting.variable);
    if (text != nullptr && !setting.storesEmptied && values.**text == setting.emptied)
      (values.**text).clear();
  }
  return values;
}

Rect StoredSettings::Frame(const FrameSetting& setting) {
  const auto known = frames.find(setting.key);
  return known != frames.end() ? known->second.frame : setting.fallback;
}

void StoredSettings::SaveFrame(const FrameSetting& setting, const Rect& frame) {
  const GatheredFrames together;
  frames[setting.key] = {frame, true};
}

StoredSettings::GatheredFrames::GatheredFrames() {
  ++gathering;
}

StoredSettings::GatheredFrames::~GatheredFrames() {
  if (--gathering > 0) return;
  PreferenceSet set(kSet, PreferenceSet::Saving::Gathered);
  for (auto& [key, kept] : frames) {
    if (std::exchange(kept.changed, false)) SaveWindowSetting(set, key.c_str(), kept.frame);
  }
  set.Save();
}

}  // namespace corvane
