#include <gtest/gtest.h>

#include <algorithm>

#include "util/Encodings.h"
#include "util/GetTruncatedString.h"

namespace corvane {
namespace {

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
                           "\xF4\x8F\xBF\xBF", "\xEC\x84\xB8"})
    EXPECT_TRUE(IsUtf8(good)) << good;
  for (const char* bad : {"\x80", "\xC3", "\xC0\xAF", "\xC1\xBF", "\xE0\x9F\xBF", "\xED\xA0\x80",
                          "\xF0\x8F\xBF\xBF", "\xF4\x90\x80\x80", "\xFF", "\xE2\x82", "\xC3("})
    EXPECT_FALSE(IsUtf8(bad));
}

TEST(Encodings, NamesSurviveTheWayThereAndBack) {
  const std::tuple<std::string, std::string, std::string> cases[] = {
      {"", "Gr\xFC\xDF", "Grüß"},  // Latin-1 is only read
      {"WINDOWS-1252", "100 \x80", "100 €"},
      {"WINDOWS-1251", "\xCF\xF0\xE8\xE2\xE5\xF2.txt", "Привет.txt"},
      {"KOI8-R", "\xF0\xD2\xC9\xD7\xC5\xD4", "Привет"},
      {"EUC-KR", "\xC7\xD1\xB1\xDB 1", "한글 1"},
      {"GBK", "\xD6\xD0\xCE\xC4", "中文"},
      {"CP932", "\x95\x5C\x83\x65", "表テ"},  // the first ends in a backslash
      {"EUC-KR", "Ünï", "Ünï"},               // UTF-8 is recognised for what it is
      {"EUC-KR", "a\xFF\xFE", "aÿþ"},         // of no encoding
      {"BIG5", "\xA4", "¤"},                  // cut
      {"no such", "\xE4", "ä"},
  };
  for (const auto& [encoding, bytes, text] : cases) {
    EXPECT_EQ(Decoded(bytes, encoding), text) << encoding;
    EXPECT_EQ(DisplayText(bytes, encoding), text) << encoding;
    const bool reads =
        IsUtf8(bytes) || encoding.empty() || text == "aÿþ" || text == "¤" || text == "ä";
    if (!reads) EXPECT_EQ(Encoded(text, encoding), bytes) << encoding;
  }
  const std::tuple<std::string, std::string, std::optional<std::string>> typed[] = {
      {"", "ä€", "ä€"},        {"KOI8-R", "plain", "plain"}, {"KOI8-R", "100 €", {}},
      {"GBK", "\xFF", "\xFF"}, {"no such", "ä", {}},
  };
  for (const auto& [encoding, text, bytes] : typed) EXPECT_EQ(Encoded(text, encoding), bytes);
  // The system has every one that is offered.
  for (const OfferedEncoding& offered : OfferedEncodings()) {
    const auto has = [&](const char* letter) { return Encoded(letter, offered.name).has_value(); };
    EXPECT_TRUE(has("é") || has("ж") || has("α") || has("あ") || has("한")) << offered.name;
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
