#include <gtest/gtest.h>

#include <tuple>

#include "sites/ParseUrl.h"
#include "sites/ProxyOf.h"
#include "sites/SiteOf.h"

namespace corvane {
namespace {

std::string Describe(const Site& site) {
  return site.host + "|" + site.user + "|" + site.password + "|" + site.path + "|" +
         std::to_string(site.port);
}

std::string Describe(const std::optional<Shortcut>& s) {
  return s ? s->label + "|" + Describe(s->site) + (s->site.passive ? "|P" : "|A") : "";
}

TEST(ParseUrl, ReadsTheStoredForm) {
  const std::pair<const char*, const char*> cases[] = {
      {"Afiles*ftp://anonymous:x@host:21/pub/", "files|host|anonymous|x|/pub/|21|A"},
      {"Pfiles*ftp://u:p@h:2121", "files|h|u|p||2121|P"},
      {"Afiles*ftp://u:p@h/pub", "files|h/|u|p|/pub|21|A"},
      {"xa b*ftp://u:@h:", "a b|h|u|||21|P"},
      // A path may stand before the port, and takes what is left of it again.
      {"Al*ftp://u:p@h/a:7/b", "l|h/|u|p|/b|7|A"},
      {"Al*ftp://name@host:21/", "l|host||name|/|21|A"},
      {"Al*ftp://u:a@b@h:21/", "l|h|u|b|/|21|A"},
      // A port that is none does not end the list.
      {"Al*ftp://u:p:q@h:21/", "l|p|u||/|0|A"},
      {"Al*ftp://u:p@h:2121x/", "l|h|u|p|/|2121|A"},
      {"Al*ftp://u:p@h:70000/", "l|h|u|p|/|0|A"},
      {"Al*ftp://u:p@h: 22 /", "l|h|u|p|/|22|A"},
  };
  for (const auto& [text, expected] : cases) EXPECT_EQ(Describe(ParseUrl(text, false)), expected);
  EXPECT_EQ(Describe(ParseUrl("ftp://u:p@h:21/pub", true)), "|h|u|p|/pub|21|A");
  EXPECT_FALSE(ParseUrl("Pl*ftp://u:p@h:21/pub", true));
  for (const char* bad : {"A*ftp://", "A*http://h:21/", "A*ftp://u:p@h", "Aftp://u:p@h:21/", ""})
    EXPECT_FALSE(ParseUrl(bad, false)) << bad;
}

// The text, the site that it names, and the URL that is written for it.
TEST(Url, IsReadAndWrittenInOneWay) {
  const std::tuple<const char*, const char*, const char*> cases[] = {
      {"ftp://h", "h||||21", "ftp://h"},
      {"ftp://h/", "h||||21", "ftp://h"},
      {"FTP://h:/pub/", "h|||/pub/|21", "ftp://h/pub/"},
      {"ftp://h:2121/pub", "h|||/pub|2121", "ftp://h:2121/pub"},
      {" ftp://u@h:21/x\n", "h|u||/x|21", "ftp://h/x"},
      {"ftp://u:p@h:2121/a:b@c", "h|u|p|/a:b@c|2121", "ftp://h:2121/a:b@c"},
      {"ftp://u:a@b:c@h/x@y", "h|u|a@b:c|/x@y|21", "ftp://h/x@y"},
      {"ftp://me%40home:p%3Aw%2F@h/a%20b%25", "h|me@home|p:w/|/a b%|21", "ftp://h/a%20b%25"},
      {"ftp://h/a b#c?d", "h|||/a b#c?d|21", "ftp://h/a%20b%23c%3Fd"},
      {"ftp://h/\xFC", "h|||/\xFC|21", "ftp://h/%FC"},
      {"ftp://[::1]", "::1||||21", "ftp://[::1]"},
      {"ftps://u@h/x", "h|u||/x|990", "ftps://h/x"},
      {"FTPS://h:21", "h||||21", "ftps://h:21"},
      {"ftpes://h:990", "h||||990", "ftpes://h:990"},
      {"ftp://u:p@[fe80::1%25eth0]:2121/", "fe80::1%eth0|u|p||2121", "ftp://[fe80::1%25eth0]:2121"},
  };
  for (const auto& [text, site, written] : cases) {
    const auto url = Url::Read(text);
    ASSERT_TRUE(url) << text;
    EXPECT_EQ(Describe(SiteOf(*url)), site);
    EXPECT_EQ(url->Written(), written);
    const auto again = Url::Read(written);
    ASSERT_TRUE(again) << text;
    EXPECT_EQ(again->host + again->path, url->host + url->path);
    EXPECT_EQ(SiteOf(*again).port, SiteOf(*url).port);
    EXPECT_EQ(UrlOf(SiteOf(*url), url->path).Written(), written);
  }
  for (const char* bad :
       {"ftp://", "ftp:///pub", "ftp://u:p@/pub", "ftp://h:0", "ftp://h:65536", "ftp://h:21x/",
        "ftp://::1/", "ftp://[::1", "ftp://[::1]x/", "ftp://[h]/", "ftp://h/%zz",
        "ftp://h/%0d%0aDELE x", "ftp://h/a%00", "ftp://h/a\nDELE x", "http://h/", "h/pub"})
    EXPECT_FALSE(Url::Read(bad)) << bad;
  const std::pair<const char*, const char*> addresses[] = {
      {" h \n", "h||||21"},
      {"h:2121", "h||||2121"},
      {"u@h/pub", "h|u||/pub|21"},
      {"[::1]:2121", "::1||||2121"},
      {"fe80::1%eth0", "fe80::1%eth0||||21"},
      {"ftp://h:2121/pub", "h|||/pub|2121"},
      {"ftps://h", "h||||990"},
  };
  for (const auto& [text, site] : addresses) {
    const auto url = Url::ReadAddress(text);
    EXPECT_EQ(url ? Describe(SiteOf(*url)) : "", site) << text;
  }
  for (const char* bad : {"", " ", "h:port", "h:0", "http://h", "ftp://", "x:y:z", "a\nb"})
    EXPECT_FALSE(Url::ReadAddress(bad)) << bad;
  EXPECT_TRUE(Url::IsMeant(" Ftp://h:0") && Url::IsMeant("ftpes://"));
  EXPECT_FALSE(Url::IsMeant("ftp:/"));
}

TEST(SiteOf, TakesTheProtectionOfTheUrlOrThatOfThePreferences) {
  const SettingsValues before = ProcessSettings::Get();
  const std::tuple<std::int32_t, const char*, Security, std::uint16_t> cases[] = {
      {0, "ftp://h", Security::Automatic, 21},  {3, "ftp://h", Security::Plain, 21},
      {2, "ftp://h", Security::Implicit, 990},  {2, "ftp://h:21", Security::Implicit, 21},
      {3, "ftpes://h", Security::Required, 21}, {0, "ftps://h", Security::Implicit, 990},
      {99, "ftp://h", Security::Automatic, 21}, {-1, "ftp://h", Security::Automatic, 21},
  };
  for (const auto& [setting, text, security, port] : cases) {
    ProcessSettings::Set({.security = setting});
    const Site site = SiteOf(Url::Read(text).value());
    EXPECT_TRUE(site.security == security && site.port == port) << text << " " << setting;
  }
  ProcessSettings::Set(before);
}

TEST(ProxyOf, TakesWhatTheUserSet) {
  const std::tuple<bool, const char*, int, std::optional<Proxy>> cases[] = {
      {false, "8021", 0, {}},
      {true, "8021", 0, Proxy{"p", 8021, Proxy::Kind::Ftp, "u", "s"}},
      {true, " 8021 ", 1, Proxy{"p", 8021, Proxy::Kind::Socks5, "u", "s"}},
      {true, "many", 2, Proxy{"p", 0, Proxy::Kind::Http, "u", "s"}},
      {true, "", 3, Proxy{"p", 0, Proxy::Kind::Ftp, "u", "s"}},
      {true, "1", 257, Proxy{"p", 1, Proxy::Kind::Ftp, "u", "s"}},
  };
  for (const auto& [used, port, kind, proxy] : cases) {
    const SettingsValues settings{.useProxy = used,
                                  .proxyAddress = "p",
                                  .proxyPort = port,
                                  .proxyKind = kind,
                                  .proxyUser = "u",
                                  .proxyPassword = "s"};
    EXPECT_EQ(ProxyOf(settings), proxy) << port;
  }
}

}  // namespace
}  // namespace corvane
