#include "settings/StoredSettings.h"

#include <cstdint>
#include <map>
#include <utility>

#include "settings/Access.h"
#include "settings/ShortcutStore.h"

namespace corvane {
namespace {

constexpr const char* kSet = "settings";
constexpr std::int32_t kVersion = 1100;
constexpr std::int32_t kFlaglessShortcuts = 1000;  // versions below have shortcuts without a flag

struct KeptFrame {
  Rect frame;
  bool changed = false;  // and not yet stored
};
std::map<std::string, KeptFrame> frames;  // by their keys
int gathering = 0;

// Offered in place of a password that was left empty.
constexpr const char* kSomePassword = "guest@a.b";

void BringUpToDate(PreferenceSet& set) {
  const std::int32_t version = GetInt32(set, "version", kVersion);
  // Shortcuts that could not be converted now are converted at the next start.
  const bool done = version >= kFlaglessShortcuts || ShortcutStore::ConvertShortcuts() != 0;
  if (version < kVersion && done) SaveInt32(set, "version", kVersion);
  set.Save();
}

SettingsValues Read(const PreferenceSet& set) {
  SettingsValues values;
  const auto text = [&set](const char* name, std::string& value) {
    value = GetString(set, name, value);
  };
  const auto flag = [&set](const char* name, bool& value) {
    value = GetInt32(set, name, value ? 1 : 0) != 0;
  };
  text("downloaddir", values.DwnldDir);
  text("defaultpass", values.DfltPass);
  text("loginSsnd", values.loginSsnd);
  text("loginFsnd", values.loginFsnd);
  text("upldsnd", values.upldsnd);
  text("dwnldsnd", values.dwnldsnd);
  values.buffersize = GetInt32(set, "buffersize", values.buffersize);
  text("ftpproxyaddress", values.proxyAddress);
  values.proxyPort = GetString(set, "ftpproxyport", "");
  if (values.proxyPort.empty()) values.proxyPort = "21";
  flag("shwtranwin", values.showwindow);
  flag("notify", values.notify);
  flag("useproxy", values.useProxy);
  flag("removeitem", values.removeItem);
  // Stored as a text under the same key, so the number is never there and the flag stays false.
  flag("defaultpass", values.defaultpass);
  flag("useSameConnection", values.useSameConnection);
  return values;
}

std::string OrElse(const std::string& text, const char* fallback) {
  return text.empty() ? fallback : text;
}

}  // namespace

std::string StoredSettings::ReadAtStart() {
  PreferenceSet set(kSet, PreferenceSet::Saving::Gathered);
  BringUpToDate(set);
  ProcessSettings::Set(Read(set));
  for (const FrameSetting& setting : {kMainFrame, kTransferFrame, kConnectionFrame}) {
    frames[setting.key].frame = GetWindowSetting(set, setting.key, setting.fallback);
  }
  return set.Finish();
}

std::string StoredSettings::Apply(const SettingsValues& entered) {
  PreferenceSet set(kSet, PreferenceSet::Saving::Gathered);
  SettingsValues now = entered;
  now.showwindow = ProcessSettings::Get().showwindow;
  const auto sound = [&set](const char* name, std::string& path) {
    path = OrElse(path, "none");
    SaveString(set, name, path);
  };
  now.DfltPass = OrElse(entered.DfltPass, kSomePassword);
  SaveString(set, "defaultpass", now.DfltPass);
  SaveInt32(set, "shwtranwin", entered.showwindow ? 1 : 0);
  SaveInt32(set, "removeitem", entered.removeItem ? 1 : 0);
  SaveInt32(set, "notify", entered.notify ? 1 : 0);
  // An emptied field stays empty on the disk: who emptied it wants to be asked, where one who never
  // chose gets the desktop's folder.
  now.DwnldDir = OrElse(entered.DwnldDir, "empty");
  SaveString(set, "downloaddir", entered.DwnldDir);
  SaveString(set, "ftpproxyaddress", entered.proxyAddress);
  SaveString(set, "ftpproxyport", entered.proxyPort);
  SaveInt32(set, "useproxy", entered.useProxy ? 1 : 0);
  SaveInt32(set, "useSameConnection", entered.useSameConnection ? 1 : 0);
  sound("dwnldsnd", now.dwnldsnd);
  sound("upldsnd", now.upldsnd);
  sound("loginSsnd", now.loginSsnd);
  sound("loginFsnd", now.loginFsnd);
  SaveInt32(set, "buffersize", entered.buffersize);
  ProcessSettings::Set(std::move(now));
  set.Save();
  return set.Finish();
}

bool StoredSettings::ShowsTransferWindow() {
  const PreferenceSet set(kSet);
  return GetInt32(set, "shwtranwin", ProcessSettings::Get().showwindow ? 1 : 0) != 0;
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
