#include "sites/RecentStore.h"

#include "support/Config.h"
#include "support/Files.h"

namespace corvane {
namespace {

using Recent = ConfigTest;

std::string All() {
  std::string text;
  for (const auto& [site, when] : RecentStore::Read()) {
    text += std::to_string(when) + " " + site.user + "@" + site.host + ":" +
            std::to_string(site.port) + site.path + (site.passive ? "+" : "") +
            (site.security == Security::Automatic ? "" : "!") + site.encoding +
            site.clientCertificate +
            (site.connections > 0 ? "*" + std::to_string(site.connections) : "") + " ";
    EXPECT_EQ(site.password, "");
  }
  return text;
}

TEST_F(Recent, AreTheNewestOnceEachAndWithoutPasswords) {
  EXPECT_EQ(All(), "");
  const Site odd{.host = "h 1",
                 .port = 2121,
                 .user = "u",
                 .password = "secret",
                 .path = "/a%\xFC",
                 .security = Security::Plain,
                 .encoding = "CP1251",
                 .clientCertificate = "/my key.pem",
                 .keptPassword = true,
                 .connections = 3};
  EXPECT_EQ(RecentStore::Add(odd, 1), Text());
  EXPECT_EQ(RecentStore::Add({.host = "i", .user = "anonymous", .password = "x"}, 2), Text());
  EXPECT_EQ(RecentStore::Add({.host = "i", .user = "u", .path = "/d"}, 3), Text());
  EXPECT_EQ(RecentStore::Add({.host = "i", .user = "u", .path = "/d/", .passive = true}, 4),
            Text());
  EXPECT_EQ(All(), "4 u@i:21/d/+ 2 @i:21 1 u@h 1:2121/a%\xFC!CP1251/my key.pem*3 ");
}

TEST_F(Recent, AreBoundedAndForgotten) {
  for (int i = 0; i < 30; ++i)
    EXPECT_EQ(RecentStore::Add({.host = "h" + std::to_string(i)}, i), Text());
  const auto recent = RecentStore::Read();
  ASSERT_EQ(recent.size(), RecentStore::kMost);
  EXPECT_EQ(recent.front().site.host + recent.back().site.host, "h29h10");
  EXPECT_EQ(RecentStore::Forget(), Text());
  EXPECT_EQ(All(), "");
}

TEST_F(Recent, HaveTheShortcutOfTheirLogin) {
  const std::vector<Shortcut> shortcuts = {
      {.label = "other", .site = {.host = "h", .user = "v"}},
      {.label = "first", .site = {.host = "h", .user = "u", .path = "/a"}},
      {.label = "same", .site = {.host = "h", .user = "u", .path = "/b/"}},
      {.label = "open", .site = {.host = "o", .user = "anonymous"}}};
  const std::pair<Site, const char*> cases[] = {{{.host = "h", .user = "u", .path = "/b"}, "same"},
                                                {{.host = "h", .user = "u", .path = "/c"}, "first"},
                                                {{.host = "o"}, "open"},
                                                {{.host = "h"}, ""}};
  for (const auto& [site, label] : cases) {
    const Shortcut* found = RecentStore::ShortcutOf(site, shortcuts);
    EXPECT_EQ(found != nullptr ? found->label : "", label);
  }
}

}  // namespace
}  // namespace corvane
