#include "kit/Message.h"

#include <gtest/gtest.h>

namespace corvane {
namespace {

Message Sample() {
  Message message("CNNT"_what);
  message.AddBool("flag", true);
  message.AddInt16("small", -2);
  message.AddInt32("number", -3);
  message.AddInt64("big", std::int64_t{1} << 40);
  message.AddDouble("ratio", -0.5);
  message.AddRect("frame", {1, 2.5F, 300, -4});
  message.AddString("name", "one");
  message.AddString("name", std::string_view("two\0three", 9));
  message.AddText("why", Text("%1: %2", "raw \xFF %2", Text("%1 more", 3)));
  message.AddData("raw", "BLOB"_what, "\xFF\x01");
  return message;
}

TEST(Message, FindsEveryTypeAgainAfterFlattening) {
  const auto read = Message::Unflatten(Sample().Flatten());
  ASSERT_TRUE(read);
  EXPECT_EQ(*read, Sample());
  EXPECT_EQ(read->FindBool("flag"), true);
  EXPECT_EQ(read->FindInt16("small"), -2);
  EXPECT_EQ(read->FindInt32("number"), -3);
  EXPECT_EQ(read->FindInt64("big"), std::int64_t{1} << 40);
  EXPECT_EQ(read->FindDouble("ratio"), -0.5);
  EXPECT_EQ(read->FindRect("frame"), (Rect{1, 2.5F, 300, -4}));
  EXPECT_EQ(read->FindString("name", 1), std::string("two\0three", 9));
  EXPECT_EQ(read->FindText("why")->English(), "raw \xFF %2: 3 more");
  EXPECT_EQ(read->FindText("name"), Text::Raw("one"));
  EXPECT_FALSE(read->FindString("why"));
  EXPECT_EQ(read->FindData("raw", "BLOB"_what), "\xFF\x01");
}

TEST(Message, RefusesWrongNamesIndicesAndTypes) {
  Message message = Sample();
  EXPECT_FALSE(message.FindString("missing"));
  EXPECT_FALSE(message.FindString("name", 2));
  EXPECT_FALSE(message.FindInt32("small"));
  EXPECT_FALSE(message.AddInt32("name", 1));
  EXPECT_FALSE(message.AddInt32(std::string(256, 'n'), 1));
  EXPECT_EQ(message, Sample());
  message.AddData("liar", *message.TypeOf("number"), "12345");  // five bytes are no Int32
  EXPECT_FALSE(message.FindInt32("liar"));
  message.AddData("no text", *message.TypeOf("why"), "s\1\1\1\1");
  EXPECT_FALSE(message.FindText("no text"));
}

TEST(Text, OfManyLinesFitsInAMessage) {
  std::vector<Text> lines;
  std::string english;
  for (int i = 0; i < 1'001; ++i) {
    lines.push_back(i % 3 == 0 ? Text() : Text("%1 more", i));
    if (i % 3 != 0) english += std::to_string(i) + " more\n";
  }
  const auto read = Text::Unflatten(Text::Lines(lines).Flatten());
  ASSERT_TRUE(read);
  EXPECT_EQ(read->English() + "\n", english);
}

// No cut is a message. Whatever single byte is damaged, what is still read is written alike.
TEST(Message, SurvivesCutsAndDamageAtEveryByte) {
  const std::string whole = Sample().Flatten();
  EXPECT_FALSE(Message::Unflatten(whole + '\0'));
  for (std::size_t at = 0; at < whole.size(); ++at) {
    EXPECT_FALSE(Message::Unflatten(whole.substr(0, at))) << "cut at " << at;
    std::string damaged = whole;
    damaged[at] = static_cast<char>(~damaged[at]);
    const auto read = Message::Unflatten(damaged);
    EXPECT_EQ(read ? read->Flatten() : damaged, damaged) << "damaged at " << at;
    EXPECT_FALSE(read && at < 4) << "the mark is damaged at " << at;
  }
}

TEST(Message, TheFormIsFixed) {
  Message message(1);
  message.AddInt16("a", 0x0102);
  const std::string field("\1\0\0\0aTRHS\1\0\0\0\2\0\0\0\2\1", 19);
  const std::string start("CVM1\1\0\0\0", 8);
  EXPECT_EQ(message.Flatten(), start + std::string("\1\0\0\0", 4) + field);
  EXPECT_FALSE(Message::Unflatten(start + std::string("\2\0\0\0", 4) + field + field));
  EXPECT_FALSE(Message::Unflatten(start + "\xFF\xFF\xFF\xFF" + field)) << "more than there are";
}

}  // namespace
}  // namespace corvane
