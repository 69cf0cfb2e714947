#include <set>

#include "settings/ListingLooks.h"
#include "settings/SettingsTable.h"
#include "settings/StoredSettings.h"
#include "support/Config.h"
#include "support/Files.h"

namespace corvane {
namespace {

class Settings : public ConfigTest {
 protected:
  static std::string Read() {
    return StoredSettings::ReadAtStart([] { return true; }).English();
  }
  static std::string Texts() {
    const SettingsValues now = ProcessSettings::Get();
    return now.DwnldDir + "|" + now.DfltPass + "|" + now.upldsnd + "|" + now.proxyPort;
  }
};

TEST_F(Settings, WhatIsMissingOrOfAnotherTypeReadsAsItsDefault) {
  EXPECT_EQ(Read(), "");
  SettingsValues values = ProcessSettings::Get();
  EXPECT_EQ(values, SettingsValues());
  EXPECT_EQ(values.DfltPass.size(), 13U);
  EXPECT_GE(Contents(File("settings")).size(), 4U);
  EXPECT_EQ(GetInt32(PreferenceSet("settings"), "version", -1), -1);

  Put("settings", "buffersize", "8192");
  Put("settings", "ftpproxyport", "");
  Put("settings", "downloaddir", 7);
  Put("settings", "mainwinframe", "left");
  Put("settings", "useproxy", 2);
  Read();
  values = ProcessSettings::Get();
  EXPECT_EQ(values.DwnldDir + values.proxyPort + std::to_string(values.buffersize), "empty218192");
  EXPECT_EQ(StoredSettings::Frame(kMainFrame), kMainFrame.fallback);
  EXPECT_TRUE(values.useProxy);

  // What stands for an emptied field, in force and after the next start.
  values.DwnldDir = values.DfltPass = values.upldsnd = values.proxyPort = "";
  EXPECT_TRUE(StoredSettings::Apply(values).IsEmpty());
  EXPECT_EQ(Texts(), "empty|guest@a.b|none|");
  EXPECT_EQ(StoredSettings::ForEditing().DwnldDir, "");
  Read();
  EXPECT_EQ(Texts(), "|guest@a.b|none|21");
}

// Each row of the table is stored under its own key and type, and comes back.
TEST_F(Settings, EveryRowIsStoredAndReadAgain) {
  SettingsValues entered;
  for (const Setting& setting : AllSettings()) {
    if (setting.tab == SettingsTab::None) continue;
    if (const auto* text = std::get_if<std::string SettingsValues::*>(&setting.variable))
      entered.** text = std::string("my ") + setting.key;
    else if (const auto* flag = std::get_if<bool SettingsValues::*>(&setting.variable))
      entered.** flag = !(entered.**flag);
    else
      entered.buffersize = 131072;
  }
  Read();
  EXPECT_TRUE(StoredSettings::Apply(entered).IsEmpty());
  EXPECT_TRUE(ProcessSettings::Get().showwindow) << "in force from the next start on";
  EXPECT_EQ(StoredSettings::ForEditing(), entered);
  Read();
  EXPECT_EQ(ProcessSettings::Get(), entered);
  std::set<std::string> keys;
  const PreferenceSet set("settings");
  for (const std::string& name : PREFGetMessage(set.Handle())->Names()) keys.insert(name);
  EXPECT_EQ(keys, (std::set<std::string>{"defaultpass",
                                         "downloaddir",
                                         "shwtranwin",
                                         "removeitem",
                                         "notify",
                                         "useSameConnection",
                                         "classicstyle",
                                         "buffersize",
                                         "loginSsnd",
                                         "loginFsnd",
                                         "upldsnd",
                                         "dwnldsnd",
                                         "useproxy",
                                         "ftpproxyaddress",
                                         "ftpproxyport",
                                         "proxykind",
                                         "proxyuser",
                                         "proxypassword",
                                         "security",
                                         "askbeforeplain",
                                         "usekeyring",
                                         "keeptimes",
                                         "keepalive",
                                         "connectwait",
                                         "encryptionwait",
                                         "replywait",
                                         "datawait",
                                         "comparechecksums",
                                         "connectionspertransfer",
                                         "downloadlimit",
                                         "editor",
                                         "existing",
                                         "firstretry",
                                         "partnames",
                                         "retries",
                                         "transfersatonce",
                                         "transfersperserver",
                                         "uploadlimit"}));
}

TEST_F(Settings, ADamagedFileIsLeftAloneAndSaidSo) {
  Put("settings", "buffersize", 65536);
  const std::string whole = Contents(File("settings"));
  const std::string damaged[] = {std::string(whole).replace(4, 4, "????"),
                                 whole.substr(0, whole.size() - 5)};
  for (const std::string& broken : damaged) {
    Write(File("settings"), broken);
    EXPECT_NE(Read(), "");
    EXPECT_EQ(ProcessSettings::Get().buffersize, 8192);
    StoredSettings::SaveFrame(kMainFrame, {1, 2, 3, 4});
    EXPECT_FALSE(StoredSettings::Apply(ProcessSettings::Get()).IsEmpty());
    EXPECT_FALSE(PreferenceSet("settings").Finish().IsEmpty());
    EXPECT_EQ(Contents(File("settings")), broken);
  }
}

TEST_F(Settings, LooksOfListingsAreKeptForTheSitesVisitedLast) {
  ListingLook look;
  look.columns[3] = {.shown = true, .width = 77};
  look.natural = false;
  ListingLooks::Keep("first\tuser\n@h:21", look);
  EXPECT_EQ(ListingLooks::Read("first\tuser\n@h:21"), look);
  EXPECT_EQ(ListingLooks::Read("first"), ListingLook());
  for (std::size_t site = 1; site < ListingLooks::kMost; ++site) {
    ListingLooks::Keep("site " + std::to_string(site), look);
  }
  ListingLooks::Keep("first\tuser\n@h:21", look);  // visited once more
  ListingLooks::Keep("one more", look);
  EXPECT_EQ(ListingLooks::Read("site 1"), ListingLook()) << "not visited for longest";
  EXPECT_EQ(ListingLooks::Read("site 2"), look);
  EXPECT_EQ(ListingLooks::Read("first\tuser\n@h:21"), look);
  for (const char* damaged :
       {"s\t9 1 1 1 1 0 1 0 1 0 1 0 1 0 1 0 1 0\n", "s\t1 1\n", "s\tx\n", ""}) {
    Put("listings", "sites", damaged);
    EXPECT_EQ(ListingLooks::Read("s"), ListingLook()) << damaged;
  }
}

}  // namespace
}  // namespace corvane
