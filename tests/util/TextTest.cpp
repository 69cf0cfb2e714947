#include <gtest/gtest.h>

#include "util/Encodings.h"
#include "util/FileSizeString.h"
#include "util/GetTruncatedString.h"
#include "util/ParseUrl.h"

namespace corvane {
namespace {

TEST(ParseUrl, ReadsTheStoredForm) {
  struct Case {
    const char* text;
    std::optional<Shortcut> expected;  // label, host, user, pass, path, port, passive
  };
  const Case cases[] = {
      {"Afiles*ftp://anonymous:x@host:21/pub/",
       Shortcut{"files", "host", "anonymous", "x", "/pub/", "21", false}},
      {"Pfiles*ftp://u:p@h:2121", Shortcut{"files", "h", "u", "p", "", "2121", true}},
      {"Afiles*ftp://u:p@h/pub", Shortcut{"files", "h/", "u", "p", "/pub", "", false}},
      {"xa b*ftp://u:@h:", Shortcut{"a b", "h", "u", "", "", "", true}},
      // A path may stand before the port, and takes what is left of it again.
      {"Al*ftp://u:p@h/a:7/b", Shortcut{"l", "h/", "u", "p", "/b", "7", false}},
      {"Al*ftp://name@host:21/", Shortcut{"l", "host", "", "name", "/", "21", false}},
      {"Al*ftp://u:a@b@h:21/", Shortcut{"l", "h", "u", "b", "/", "21", false}},
      {"Al*ftp://u:p:q@h:21/", Shortcut{"l", "p", "u", "", "/", "q@h:21", false}},
      {"Afiles*ftp://", {}},
      {"Afiles*http://h:21/", {}},
      {"Afiles*ftp://u:p@h", {}},
      {"Aftp://u:p@h:21/", {}},
      {"", {}},
  };
  for (const Case& each : cases) {
    EXPECT_TRUE(ParseUrl(each.text, false) == each.expected) << each.text;
  }
  const auto plain = ParseUrl("ftp://u:p@h:21/pub", true);
  EXPECT_TRUE(plain == (Shortcut{"", "h", "u", "p", "/pub", "21", false}));
  EXPECT_FALSE(ParseUrl("Pl*ftp://u:p@h:21/pub", true));
}

TEST(FileSizeString, CutsAndPads) {
  for (const std::string each :
       {"=   B", "7=7   B", "42=42  B", "999=999 B", "1000=1.0 KB", "1999=1.9 KB", "12345=12  KB",
        "999999=999 KB", "1000000=1.0 MB", "12345678=12  MB", "4294967296=429  MB"}) {
    const std::size_t sign = each.find('=');
    EXPECT_EQ(FileSizeString(each.substr(0, sign)), each.substr(sign + 1));
  }
}

// Every character is one pixel wide.
float Characters(std::string_view text) {
  float count = 0;
  for (const char c : text) count += (static_cast<unsigned char>(c) & 0xC0) != 0x80 ? 1.0F : 0.0F;
  return count;
}

TEST(GetTruncatedString, EndsInDotsThatFit) {
  struct Case {
    const char* text;
    float width;
    const char* expected;
  };
  const Case cases[] = {{"abcdef", 6, "abcdef"}, {"abcdef", 5, "ab..."}, {"ab   cd", 6, "ab..."},
                        {"abcdef", 3, "a.."},    {"abcdef", 2, "a."},    {"abcdef", 0, "a"},
                        {" bcdef", 3, "..."},    {" bcdef", 0, "."},     {"", -1, ""}};
  for (const Case& each : cases) {
    EXPECT_EQ(GetTruncatedString(each.text, Characters, each.width), each.expected)
        << each.text << " in " << each.width;
  }
}

TEST(GetTruncatedString, CutsWholeCharactersWhereAsked) {
  struct Case {
    const char* text;
    float width;
    Truncation mode;
    const char* expected;
  };
  const Case cases[] = {
      {"äöüß", 4, Truncation::End, "äöüß"},      {"äöüß", 3, Truncation::End, "äö…"},
      {"äöüß", 3, Truncation::Beginning, "…üß"}, {"äöüßxyz", 4, Truncation::Middle, "äö…z"},
      {"äöü", 1, Truncation::Middle, "…"},       {"äöü", 0, Truncation::End, ""},
      {"\x80\x80\x80", -1, Truncation::End, ""},
  };
  for (const Case& each : cases) {
    EXPECT_EQ(GetTruncatedString(each.text, Characters, each.width, each.mode), each.expected)
        << each.text << " in " << each.width;
  }
}

TEST(Encodings, OnlyWellFormedUtf8IsUtf8) {
  for (const char* good : {"", "a", "ä", "€", "\xF0\x9F\x98\x80", "\xED\x9F\xBF", "\xEE\x80\x80",
                           "\xF4\x8F\xBF\xBF", "\xEC\x84\xB8"}) {
    EXPECT_TRUE(IsUtf8(good)) << good;
  }
  for (const char* bad : {"\x80", "\xC3", "\xC0\xAF", "\xC1\xBF", "\xE0\x9F\xBF", "\xED\xA0\x80",
                          "\xF0\x8F\xBF\xBF", "\xF4\x90\x80\x80", "\xFF", "\xE2\x82", "\xC3("}) {
    EXPECT_FALSE(IsUtf8(bad));
  }
}

TEST(Encodings, ShownTextHidesNothing) {
  using std::string_view_literals::operator""sv;
  const std::pair<std::string_view, std::string_view> cases[] = {
      {"Grüße €", "Grüße €"},
      {"Gr\xFC\xDF.", "Grüß."},  // Latin-1
      {"\xC0\xAF", "À¯"},        // an overlong slash is Latin-1, not a slash
      {"a\0b\n\x7F"sv, "a\\x00b\\x0A\\x7F"},
      {"\xC2\x85|\x1B[2J", "\\x85|\\x1B[2J"},
      {"\x85\xFF", "\\x85ÿ"},  // a control character of Latin-1
      {"exe\u202Etxt", "exe\\u202Etxt"},
      {"\u2066\u200F\u061C\u2028", "\\u2066\\u200F\\u061C\\u2028"},
      {"\u200D\u2070", "\u200D\u2070"},
  };
  for (const auto& [bytes, expected] : cases) {
    EXPECT_EQ(DisplayText(bytes), expected);
    EXPECT_TRUE(IsUtf8(DisplayText(bytes)));
  }
}

}  // namespace
}  // namespace corvane
