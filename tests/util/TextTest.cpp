#include <gtest/gtest.h>

#include <algorithm>

#include "util/Encodings.h"
#include "util/FileSizeString.h"
#include "util/GetTruncatedString.h"
#include "util/ParseUrl.h"

namespace corvane {
namespace {

std::string Describe(const std::optional<Shortcut>& s) {
  if (!s) return "";
  return s->label + "|" + s->host + "|" + s->user + "|" + s->pass + "|" + s->path + "|" + s->port +
         (s->passive ? "|P" : "|A");
}

TEST(ParseUrl, ReadsTheStoredForm) {
  const std::pair<const char*, const char*> cases[] = {
      {"Afiles*ftp://anonymous:x@host:21/pub/", "files|host|anonymous|x|/pub/|21|A"},
      {"Pfiles*ftp://u:p@h:2121", "files|h|u|p||2121|P"},
      {"Afiles*ftp://u:p@h/pub", "files|h/|u|p|/pub||A"},
      {"xa b*ftp://u:@h:", "a b|h|u||||P"},
      // A path may stand before the port, and takes what is left of it again.
      {"Al*ftp://u:p@h/a:7/b", "l|h/|u|p|/b|7|A"},
      {"Al*ftp://name@host:21/", "l|host||name|/|21|A"},
      {"Al*ftp://u:a@b@h:21/", "l|h|u|b|/|21|A"},
      {"Al*ftp://u:p:q@h:21/", "l|p|u||/|q@h:21|A"},
  };
  for (const auto& [text, expected] : cases) EXPECT_EQ(Describe(ParseUrl(text, false)), expected);
  EXPECT_EQ(Describe(ParseUrl("ftp://u:p@h:21/pub", true)), "|h|u|p|/pub|21|A");
  EXPECT_FALSE(ParseUrl("Pl*ftp://u:p@h:21/pub", true));
  for (const char* bad : {"A*ftp://", "A*http://h:21/", "A*ftp://u:p@h", "Aftp://u:p@h:21/", ""}) {
    EXPECT_FALSE(ParseUrl(bad, false)) << bad;
  }
}

TEST(FileSizeString, CutsAndPads) {
  std::string sizes;
  for (const char* bytes : {"", "42", "999", "1999", "12345", "999999", "1000000", "4294967296"})
    sizes += FileSizeString(bytes) + "|";
  EXPECT_EQ(sizes, "   B|42  B|999 B|1.9 KB|12  KB|999 KB|1.0 MB|429  MB|");
}

TEST(GetTruncatedString, EndsInDotsThatFitAndCutsWholeCharacters) {
  const TextWidth characters = [](std::string_view text) {  // of one pixel each
    return static_cast<float>(
        std::ranges::count_if(text, [](char c) { return (c & 0xC0) != 0x80; }));
  };
  const std::tuple<const char*, float, const char*> dots[] = {
      {"abcdef", 6, "abcdef"}, {"ab   cd", 6, "ab..."}, {"abcdef", 3, "a.."}, {" bcdef", 0, "."}};
  for (const auto& [text, width, expected] : dots)
    EXPECT_EQ(GetTruncatedString(text, characters, width), expected);
  const std::tuple<const char*, float, Truncation, const char*> cases[] = {
      {"äöüß", 3, Truncation::Beginning, "…üß"},
      {"äöüßx", 3, Truncation::End, "äö…"},
      {"äöüßxyz", 4, Truncation::Middle, "äö…z"}};
  for (const auto& [text, width, mode, expected] : cases)
    EXPECT_EQ(GetTruncatedString(text, characters, width, mode), expected);
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
