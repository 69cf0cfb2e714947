#include "kit/Message.h"

#include <gtest/gtest.h>

#include <limits>

namespace corvane {
namespace {

Message Sample() {
  Message message("CNNT"_what);
  message.AddBool("flag", true);
  message.AddBool("flag", false);
  message.AddInt16("small", -2);
  message.AddInt32("number", std::numeric_limits<std::int32_t>::min());
  message.AddInt64("big", std::numeric_limits<std::int64_t>::max());
  message.AddDouble("ratio", -0.5);
  message.AddRect("frame", {1, 2.5F, 300, -4});
  message.AddString("name", "one");
  message.AddString("name", std::string_view("two\0three", 9));
  message.AddString("name", "");
  message.AddData("raw", "BLOB"_what, "\xFF\x01");
  return message;
}

TEST(Message, FindsEveryTypeAgainAfterFlattening) {
  const auto read = Message::Unflatten(Sample().Flatten());
  ASSERT_TRUE(read);
  EXPECT_EQ(*read, Sample());
  EXPECT_EQ(read->what, "CNNT"_what);
  EXPECT_EQ(read->FindBool("flag"), true);
  EXPECT_EQ(read->FindBool("flag", 1), false);
  EXPECT_EQ(read->FindInt16("small"), -2);
  EXPECT_EQ(read->FindInt32("number"), std::numeric_limits<std::int32_t>::min());
  EXPECT_EQ(read->FindInt64("big"), std::numeric_limits<std::int64_t>::max());
  EXPECT_EQ(read->FindDouble("ratio"), -0.5);
  EXPECT_EQ(read->FindRect("frame"), (Rect{1, 2.5F, 300, -4}));
  EXPECT_EQ(read->FindString("name", 1), std::string("two\0three", 9));
  EXPECT_EQ(read->FindString("name", 2), "");
  EXPECT_EQ(read->FindData("raw", "BLOB"_what), "\xFF\x01");
  EXPECT_EQ(read->CountValues("name"), 3U);
  EXPECT_EQ(read->Names().at(6), "name");
}

TEST(Message, RefusesWrongNamesIndicesAndTypes) {
  Message message = Sample();
  EXPECT_FALSE(message.FindString("missing"));
  EXPECT_FALSE(message.FindString("name", 3));
  EXPECT_FALSE(message.FindInt32("small"));
  EXPECT_FALSE(message.AddInt32("name", 1));
  EXPECT_FALSE(message.AddInt32(std::string(256, 'n'), 1));
  EXPECT_EQ(message, Sample());
  EXPECT_TRUE(message.RemoveName("name"));
  EXPECT_FALSE(message.RemoveName("name"));
  EXPECT_TRUE(message.AddInt32("name", 1));
  message.AddData("liar", *message.TypeOf("number"), "12345");  // five bytes are no Int32
  EXPECT_FALSE(message.FindInt32("liar"));
}

TEST(Message, RefusesEveryCutAndEveryTrailingByte) {
  const std::string whole = Sample().Flatten();
  for (std::size_t length = 0; length < whole.size(); ++length) {
    EXPECT_FALSE(Message::Unflatten(whole.substr(0, length))) << "cut at " << length;
  }
  EXPECT_FALSE(Message::Unflatten(whole + '\0'));
}

// Whatever single byte is damaged, reading does no harm, and what is read is written alike.
TEST(Message, SurvivesDamageAtEveryByte) {
  const std::string whole = Sample().Flatten();
  for (std::size_t at = 0; at < whole.size(); ++at) {
    std::string bytes = whole;
    bytes[at] = static_cast<char>(~bytes[at]);
    const auto read = Message::Unflatten(bytes);
    EXPECT_TRUE(read ? at >= 4 && read->Flatten() == bytes : true) << "at " << at;
  }
}

TEST(Message, TheFormIsFixed) {
  Message message(1);
  message.AddInt16("a", 0x0102);
  const std::string expected(
      "CVM1\1\0\0\0\1\0\0\0"
      "\1\0\0\0aTRHS\1\0\0\0\2\0\0\0\2\1",
      31);
  EXPECT_EQ(message.Flatten(), expected);
  const std::string field = expected.substr(12);
  const std::string two("CVM1\1\0\0\0\2\0\0\0", 12);
  EXPECT_FALSE(Message::Unflatten(two + field + field)) << "a name twice";
  const std::string huge("CVM1\1\0\0\0\xFF\xFF\xFF\xFF", 12);
  EXPECT_FALSE(Message::Unflatten(huge + field)) << "more fields promised than there are bytes";
}

}  // namespace
}  // namespace corvane
