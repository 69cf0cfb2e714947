#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>

#include <array>

#include "settings/Access.h"
#include "settings/ShortcutStore.h"
#include "settings/StoredSettings.h"
#include "support/Files.h"
#include "support/TemporaryDirectory.h"
#include "util/UniqueFd.h"

namespace corvane {
namespace {

class Settings : public testing::Test {
 protected:
  Settings() { ::setenv("XDG_CONFIG_HOME", home_.Path().c_str(), 1); }

  [[nodiscard]] std::filesystem::path File(const char* set) const {
    return home_.Path() / "_LP_x-ovak-Corvane" / set;
  }
  static void Put(const char* set, const char* name, std::int32_t value) {
    PreferenceSet open(set);
    SaveInt32(open, name, value);
    open.Save();
  }
  static void Put(const char* set, const char* name, const std::string& text) {
    PreferenceSet open(set);
    SaveString(open, name, text);
  }
  /// The entry's text, "-" when there is none.
  static std::string Entry(const char* name) {
    return GetString(PreferenceSet("shortcuts"), name, "-");
  }
  static std::int32_t Last() { return GetInt32(PreferenceSet("shortcuts"), "howmany", -1); }
  static Shortcut Named(const std::string& label) {
    return {.label = label, .host = "h", .user = "u", .pass = "p", .path = "/", .port = "21"};
  }
  static std::string Labels(const std::vector<Shortcut>& shortcuts) {
    std::string labels;
    for (const Shortcut& shortcut : shortcuts) labels += shortcut.label + " ";
    return labels;
  }

  TemporaryDirectory home_;
};

TEST_F(Settings, WhatIsMissingOrOfAnotherTypeReadsAsItsDefault) {
  StoredSettings::ReadAtStart();
  SettingsValues values = ProcessSettings::Get();
  EXPECT_EQ(values.DwnldDir, "empty");
  EXPECT_EQ(values.DfltPass.size(), 13U);
  EXPECT_EQ(values.upldsnd, "none");
  EXPECT_EQ(values.buffersize, 8192);
  EXPECT_EQ(values.proxyPort, "21");
  EXPECT_TRUE(values.showwindow);
  EXPECT_GE(Contents(File("settings")).size(), 4U);
  EXPECT_EQ(GetInt32(PreferenceSet("settings"), "version", -1), -1);

  Put("settings", "buffersize", "8192");
  Put("settings", "ftpproxyport", "");
  Put("settings", "downloaddir", 7);
  Put("settings", "mainwinframe", "left");
  Put("settings", "useproxy", 2);
  StoredSettings::ReadAtStart();
  values = ProcessSettings::Get();
  EXPECT_EQ(values.DwnldDir + values.proxyPort + std::to_string(values.buffersize), "empty218192");
  EXPECT_EQ(StoredSettings::Frame(kMainFrame), kMainFrame.fallback);
  EXPECT_TRUE(values.useProxy);

  values.DwnldDir = "";  // asked for each download from now on, and after the next start
  EXPECT_EQ(StoredSettings::Apply(values), "");
  EXPECT_EQ(ProcessSettings::Get().DwnldDir, "empty");
  StoredSettings::ReadAtStart();
  EXPECT_EQ(ProcessSettings::Get().DwnldDir, "");
}

TEST_F(Settings, OldShortcutsAreConvertedOnce) {
  EXPECT_EQ(ShortcutStore::ConvertShortcuts(), -1);
  Put("shortcuts", "howmany", 2);
  Put("shortcuts", "0", "files*ftp://u:p@h:21/");
  Put("shortcuts", "1", "more*ftp://u:p@h:21/");
  Put("settings", "version", 900);
  StoredSettings::ReadAtStart();
  StoredSettings::ReadAtStart();
  EXPECT_EQ(GetInt32(PreferenceSet("settings"), "version", 0), 1100);
  EXPECT_EQ(Entry("0"), "Afiles*ftp://u:p@h:21/");
  EXPECT_EQ(Labels(ShortcutStore::ReadForList().shortcuts), "files more ");
}

TEST_F(Settings, AStoreThatWasNeverWrittenGetsItsFirstShortcut) {
  EXPECT_TRUE(ShortcutStore::ReadForList().shortcuts.empty());
  EXPECT_EQ(ShortcutStore::Add(Named("early")).index, -1);
  EXPECT_EQ(Labels(ShortcutStore::ReadForMenu()), "Be Inc. ");
  EXPECT_EQ(Last(), 0);
  EXPECT_EQ(Entry("default"), Entry("0"));
  EXPECT_EQ(ShortcutStore::Add(Named("next")).index, 1);
  EXPECT_EQ(Labels(ShortcutStore::ReadForMenu()), "Be Inc. next ");
}

TEST_F(Settings, ASavedListLeavesWhatLiesBeyondItsEnd) {
  Put("shortcuts", "howmany", 4);
  for (const char* name : {"0", "1", "2", "3", "4"}) {
    Put("shortcuts", name, ShortcutStore::StoredForm(Named(name)));
  }
  EXPECT_EQ(ShortcutStore::SaveAll({Named("x"), Named("y"), Named("z")}), "");
  EXPECT_EQ(Last(), 2);
  EXPECT_EQ(Labels(ShortcutStore::ReadForMenu()), "x y z ");
  EXPECT_EQ(Entry("4"), "A4*ftp://u:p@h:21/");
  EXPECT_EQ(ShortcutStore::SaveAll({}), "");
  EXPECT_EQ(Labels(ShortcutStore::ReadForMenu()), "x ");
  EXPECT_EQ(Entry("1"), "-");
}

TEST_F(Settings, ADamagedListIsReadToItsFirstGapAndLosesNothing) {
  const std::int32_t absurd = 2'000'000'000;
  Put("shortcuts", "howmany", absurd);
  Put("shortcuts", "0", ShortcutStore::StoredForm(Named(std::string(1 << 20, 'x'))));
  Put("shortcuts", "2", ShortcutStore::StoredForm(Named("lost")));
  EXPECT_EQ(ShortcutStore::ReadForMenu().size(), 1U);
  EXPECT_EQ(ShortcutStore::Add(Named("new")).index, 1);
  EXPECT_EQ(ShortcutStore::ReadForList().shortcuts.size(), 3U);
  EXPECT_EQ(Last(), absurd);
  Put("shortcuts", "3", "no connection");
  EXPECT_EQ(ShortcutStore::Add(Named("next")).index, 3);
  EXPECT_EQ(ShortcutStore::ReadForList().shortcuts.size(), 4U);
  EXPECT_EQ(Entry("2000000001"), "no connection");
  Put("shortcuts", "howmany", 0x7FFFFFFF);
  Put("shortcuts", "4", "no connection");
  EXPECT_NE(ShortcutStore::Add(Named("none")).failure, "");
}

TEST_F(Settings, SaysWhatWouldNotComeBack) {
  using enum ShortcutStore::Return;
  const std::tuple<const char*, const char*, const char*, const char*, ShortcutStore::Return>
      cases[] = {
          {"label", "user", "secret", "/pub/a b", Whole},
          {"label", "", "", "", Whole},
          {"a*b", "user", "secret", "/", Nothing},
          {"label", "user", "p@ss", "/", Changed},
          {"label", "user", "p:w", "/", Changed},
          {"label", "anonymous", "me@home", "/", Whole},
          {"label", "user", "secret", "/a:b", Changed},
      };
  for (const auto& [label, user, pass, path, result] : cases) {
    const Shortcut shortcut{
        .label = label, .host = "h", .user = user, .pass = pass, .path = path, .port = "21"};
    EXPECT_EQ(ShortcutStore::ComesBack(shortcut), result) << ShortcutStore::StoredForm(shortcut);
  }
}

TEST_F(Settings, ADamagedFileIsLeftAloneAndSaidSo) {
  Put("settings", "buffersize", 65536);
  const std::string broken = Contents(File("settings")).replace(4, 4, "????");
  Write(File("settings"), broken);
  EXPECT_NE(StoredSettings::ReadAtStart(), "");
  EXPECT_EQ(ProcessSettings::Get().buffersize, 8192);
  StoredSettings::SaveFrame(kMainFrame, {1, 2, 3, 4});
  EXPECT_NE(StoredSettings::Apply(ProcessSettings::Get()), "");
  EXPECT_EQ(Contents(File("settings")), broken);
}

TEST_F(Settings, AFileThatIsLockedIsNotTakenForAnEmptyOne) {
  Put("shortcuts", "howmany", 0);
  Put("shortcuts", "0", ShortcutStore::StoredForm(Named("one")));
  const std::string before = Contents(File("shortcuts"));
  const UniqueFd holder(::open(File("shortcuts").c_str(), O_RDONLY | O_CLOEXEC));
  ASSERT_EQ(::flock(holder.get(), LOCK_EX), 0);
  EXPECT_TRUE(ShortcutStore::ReadForMenu().empty());
  EXPECT_NE(ShortcutStore::ReadForList().failure, "");
  Put("settings", "version", 900);
  StoredSettings::ReadAtStart();
  EXPECT_EQ(GetInt32(PreferenceSet("settings"), "version", 0), 900);
  EXPECT_EQ(Contents(File("shortcuts")), before);
}

}  // namespace
}  // namespace corvane
