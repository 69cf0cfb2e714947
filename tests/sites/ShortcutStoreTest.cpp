#include "sites/ShortcutStore.h"

#include <fcntl.h>
#include <sys/file.h>

#include <tuple>

#include "sites/ReadAtStart.h"
#include "support/Config.h"
#include "support/Files.h"
#include "util/UniqueFd.h"

namespace corvane {
namespace {

class Shortcuts : public ConfigTest {
 protected:
  /// The entry's text, "-" when there is none.
  static std::string Entry(const char* name) {
    return GetString(PreferenceSet("shortcuts"), name, "-");
  }
  static std::int32_t Last() { return GetInt32(PreferenceSet("shortcuts"), "howmany", -1); }
  static Shortcut Named(const std::string& label) {
    return {.label = label, .site = {.host = "h", .user = "u", .password = "p", .path = "/"}};
  }
  static std::string Labels(const ShortcutStore::List& list) {
    std::string labels;
    for (const Shortcut& shortcut : list.shortcuts) labels += shortcut.label + " ";
    return labels;
  }
  /// Stores entries as they are, the first under "0"; nullptr leaves one out.
  static void Fill(const std::vector<const char*>& entries) {
    Put("shortcuts", "howmany", static_cast<std::int32_t>(entries.size()) - 1);
    for (std::size_t i = 0; i < entries.size(); ++i)
      if (entries[i] != nullptr) Put("shortcuts", std::to_string(i).c_str(), entries[i]);
  }
};

TEST_F(Shortcuts, OfTheOlderFormAreConvertedOnceWhateverIsKilled) {
  EXPECT_EQ(ShortcutStore::ConvertShortcuts(), -1);
  Fill({"files*ftp://u:p@h:21/", "more*ftp://u:p@h:21/", nullptr});
  Put("settings", "version", 900);
  // Killed before the settings say that it has been done.
  EXPECT_EQ(ShortcutStore::ConvertShortcuts(), 1);
  for (int start = 0; start < 2; ++start) EXPECT_TRUE(ReadAtStart().IsEmpty());
  EXPECT_EQ(GetInt32(PreferenceSet("settings"), "version", 0), 1100);
  EXPECT_EQ(Entry("0"), "Afiles*ftp://u:p@h:21/");
  EXPECT_EQ(Labels(ShortcutStore::ReadForList()), "files more ");
  EXPECT_EQ(GetInt32(PreferenceSet("shortcuts"), "converted", -1), -1) << "no trace stays";
}

TEST_F(Shortcuts, AStoreThatWasNeverWrittenGetsItsFirstOne) {
  EXPECT_EQ(Labels(ShortcutStore::ReadForList()), "");
  EXPECT_EQ(ShortcutStore::Add(Named("early")).index, -1);
  EXPECT_EQ(Labels(ShortcutStore::ReadForMenu()), "Be Inc. ");
  EXPECT_EQ(Last(), 0);
  EXPECT_EQ(Entry("default"), Entry("0"));
  EXPECT_EQ(ShortcutStore::Add(Named("next")).index, 1);
  EXPECT_EQ(Labels(ShortcutStore::ReadForMenu()), "Be Inc. next ");
}

TEST_F(Shortcuts, ASavedListLeavesWhatLiesBeyondItsEnd) {
  const std::string old = ShortcutStore::StoredForm(Named("old"));
  Fill(std::vector(5, old.c_str()));
  EXPECT_EQ(ShortcutStore::CountOutOfReach(), 0);
  EXPECT_TRUE(ShortcutStore::SaveAll({Named("x"), Named("y"), Named("z")}).IsEmpty());
  EXPECT_EQ(Last(), 2);
  EXPECT_EQ(Labels(ShortcutStore::ReadForMenu()), "x y z ");
  EXPECT_EQ(Entry("4"), "Aold*ftp://u:p@h:21/");
  EXPECT_TRUE(ShortcutStore::SaveAll({}).IsEmpty());
  EXPECT_EQ(Labels(ShortcutStore::ReadForMenu()), "x ");
  EXPECT_EQ(Entry("1"), "-");
}

Site Rich() {
  return {.host = "h",
          .user = "u v",
          .path = "/",
          .security = Security::Implicit,
          .encoding = "CP1251",
          .clientCertificate = "/a b/c=d.p12",
          .keptPassword = true,
          .connections = 6};
}

TEST_F(Shortcuts, KeepBesideTheirLineWhatItHasNoPlaceFor) {
  const std::vector<Shortcut> all = {
      {.label = "rich", .site = Rich()},
      Named("plain"),
      {.label = "asks", .site = {.host = "h", .user = "u", .path = "/", .asksPassword = true}}};
  Shortcut secret = all[0];
  secret.site.password = "se*cret@";
  EXPECT_EQ(ShortcutStore::ComesBack(secret), ShortcutStore::Return::Whole) << "it is not written";
  EXPECT_TRUE(ShortcutStore::SaveAll({secret, all[1], all[2]}).IsEmpty());
  EXPECT_TRUE(ShortcutStore::ReadForList().shortcuts == all);
  EXPECT_EQ(Contents(File("shortcuts")).find("cret"), std::string::npos);
  EXPECT_EQ(Entry("0"), "Arich*ftp://u v:@h:21/");
  // Another program has reordered the lines: what belongs to another login is let be.
  const std::string first = Entry("0");
  Put("shortcuts", "0", Entry("1"));
  Put("shortcuts", "1", first);
  EXPECT_TRUE(ShortcutStore::Read(0) == all[1]);
  EXPECT_EQ(ShortcutStore::Read(1)->site.security, Security::Automatic);
  EXPECT_TRUE(ShortcutStore::SaveAll({all[1]}).IsEmpty());
  EXPECT_EQ(Entry("more 0"), "-") << "nothing to say";
}

TEST_F(Shortcuts, StandInFoldersBesideTheirLines) {
  std::vector<Shortcut> all = {Named("one"), Named("two"), Named("three")};
  all[0].folder = "Work/W e b";
  all[2].folder = "Home";
  all[2].site.user = "v";
  EXPECT_TRUE(
      ShortcutStore::SaveAll(all, {{"Empty"}, {"Work/W e b", false}, {"Work", false}}).IsEmpty());
  EXPECT_EQ(Entry("0"), ShortcutStore::StoredForm(Named("one"))) << "the line is as described";
  const auto folders = [] {
    std::string text;
    for (const auto& folder : ShortcutStore::ReadForList().folders) {
      text += (folder.open ? "+" : "-") + folder.path + " ";
    }
    return text;
  };
  EXPECT_TRUE(ShortcutStore::ReadForMenu().shortcuts == all);
  EXPECT_EQ(folders(), "+Empty -Work -Work/W e b +Home ") << "each behind those around it";
  ShortcutStore::KeepOpen({{"Work"}, {"Home", false}, {"Discarded"}});
  EXPECT_EQ(folders(), "+Empty +Work -Work/W e b -Home ");
  // Another program has changed a login and taken the end off.
  Put("shortcuts", "0", ShortcutStore::StoredForm(all[2]));
  Put("shortcuts", "howmany", 1);
  EXPECT_EQ(ShortcutStore::Read(0)->folder, "");
  EXPECT_EQ(folders(), "+Empty +Work -Work/W e b -Home ");
  Put("shortcuts", "folders", "+%GG x -/a//b/ +");
  EXPECT_EQ(folders(), "+a -a/b ");
}

TEST_F(Shortcuts, APasswordThatIsKeptElsewhereLeavesEveryLine) {
  const auto with = [](const char* password, const char* user) {
    return ShortcutStore::StoredForm(
        {.label = password, .site = {.host = "h", .user = user, .password = password}});
  };
  const std::string lines[] = {with("pw", "u"), with("other", "u"), with("pw", "v"),
                               with("pw", "u")};
  Fill({lines[0].c_str(), lines[1].c_str(), lines[2].c_str(), nullptr, lines[3].c_str()});
  EXPECT_TRUE(
      ShortcutStore::TakeOutPassword({.host = "h", .user = "u", .password = "pw"}).IsEmpty());
  std::string left;
  for (const Shortcut& one : ShortcutStore::ReadForList().shortcuts) {
    left += one.site.password + (one.site.keptPassword ? "+ " : " ");
  }
  EXPECT_EQ(left, "+ other pw ");
  EXPECT_EQ(Entry("4"), "Apw*ftp://u:@h:21/") << "out of reach";
  // What a shorter list leaves behind loses it too.
  EXPECT_TRUE(ShortcutStore::SaveAll({{.site = {.host = "h", .user = "v", .keptPassword = true}}})
                  .IsEmpty());
  EXPECT_EQ(Entry("2"), "Apw*ftp://v:@h:21/");
}

TEST_F(Shortcuts, ADamagedListIsReadToItsFirstGapAndLosesNothing) {
  const std::int32_t absurd = 2'000'000'000;
  Put("shortcuts", "howmany", absurd);
  Put("shortcuts", "0", ShortcutStore::StoredForm(Named(std::string(1 << 20, 'x'))));
  Put("shortcuts", "2", ShortcutStore::StoredForm(Named("lost")));
  EXPECT_EQ(ShortcutStore::ReadForMenu().shortcuts.size(), 1U);
  EXPECT_EQ(ShortcutStore::CountOutOfReach(), 1);
  EXPECT_EQ(ShortcutStore::Add(Named("new")).index, 1);
  EXPECT_EQ(ShortcutStore::ReadForList().shortcuts.size(), 3U);
  EXPECT_EQ(Last(), absurd);
  Put("shortcuts", "3", "no connection");
  Put("shortcuts", "4", ShortcutStore::StoredForm(Named("lost")));
  EXPECT_EQ(ShortcutStore::CountOutOfReach(), 2);
  EXPECT_EQ(ShortcutStore::Add(Named("next")).index, 3);
  EXPECT_EQ(ShortcutStore::ReadForList().shortcuts.size(), 5U);
  EXPECT_EQ(Entry("2000000001"), "no connection");
  Put("shortcuts", "howmany", 0x7FFFFFFF);
  Put("shortcuts", "5", "no connection");
  EXPECT_FALSE(ShortcutStore::Add(Named("none")).failure.IsEmpty());
}

TEST_F(Shortcuts, SayWhatWouldNotComeBack) {
  using enum ShortcutStore::Return;
  const std::tuple<const char*, Site, ShortcutStore::Return> cases[] = {
      {"label", {"h", 21, "user", "secret", "/pub/a b"}, Whole},
      {"label", {"h", 21, "", "", ""}, Whole},
      {"a*b", {"h", 21, "user", "secret", "/"}, Nothing},
      {"label", {"h", 21, "user", "p@ss", "/"}, Changed},
      {"label", {"h", 21, "user", "p:w", "/"}, Changed},
      {"label", {"h", 21, "anonymous", "me@home", "/"}, Whole},
      {"label", {"h", 21, "user", "secret", "/a:b"}, Changed},
  };
  for (const auto& [label, site, result] : cases) {
    Shortcut shortcut{.label = label, .site = site};
    shortcut.site.proxy = Proxy();
    EXPECT_EQ(ShortcutStore::ComesBack(shortcut), result) << ShortcutStore::StoredForm(shortcut);
  }
}

TEST_F(Shortcuts, AFileThatIsLockedIsNotTakenForAnEmptyOne) {
  Put("shortcuts", "howmany", 0);
  Put("shortcuts", "0", ShortcutStore::StoredForm(Named("one")));
  const std::string before = Contents(File("shortcuts"));
  const UniqueFd holder(::open(File("shortcuts").c_str(), O_RDONLY | O_CLOEXEC));
  ASSERT_EQ(::flock(holder.get(), LOCK_EX), 0);
  for (const auto& list : {ShortcutStore::ReadForMenu(), ShortcutStore::ReadForList()}) {
    EXPECT_TRUE(list.shortcuts.empty());
    EXPECT_FALSE(list.failure.IsEmpty());
  }
  Put("settings", "version", 900);
  EXPECT_TRUE(ReadAtStart().IsEmpty());
  EXPECT_EQ(GetInt32(PreferenceSet("settings"), "version", 0), 900);
  EXPECT_EQ(Contents(File("shortcuts")), before);
}

}  // namespace
}  // namespace corvane
