#include <arpa/inet.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <limits>
#include <string>

#include "net/NLDebug.h"
#include "net/NLException.h"
#include "net/NLLookup.h"
#include "net/NLPacket.h"

namespace corvane {
namespace {

// Labels of a name are at most 63 bytes long: this one is refused without asking anybody.
const std::string kNoName = std::string(80, 'n') + ".invalid";

std::string Text(const NLAddress& address) {
  char quad[16] = "";
  std::uint16_t port = 0;
  address.get(quad, &port);
  return std::string(quad) + ":" + std::to_string(port);
}

TEST(NLAddress, IsReplacedAsAWholeOrNotAtAll) {
  NLAddress address("localhost", 65535);
  EXPECT_EQ(Text(address), "127.0.0.1:65535");
  EXPECT_THROW(address.set(kNoName.c_str(), 5), NLException);
  EXPECT_EQ(Text(address), "127.0.0.1:65535");
  address.set(nullptr, 0);
  EXPECT_EQ(Text(address), "0.0.0.0:0");
}

TEST(NLLookup, AnswersThrowsAndIsGivenUp) {
  EXPECT_EQ(Text(NLLookup("localhost", 21).get()), "127.0.0.1:21");
  EXPECT_THROW((void)NLLookup(kNoName, 21).get(), NLException);
  NLLookup lookup("localhost", 21);
  lookup.cancel();
  EXPECT_THROW((void)lookup.get(), NLException);
}

TEST(NLException, KeepsWhatFitsAndReports) {
  EXPECT_EQ(NLException("f", std::string(300, 'm')).message, std::string(254, 'm'));
  EXPECT_EQ(NLException("f()", "text", nullptr, "a/b/File.cpp", 12).Text(),
            "......\nNetworking Library Exception\nf()\n( File \"File.cpp\"; Line 12) : text\n"
            "......\n");
}

TEST(NLPacket, KeepsNetworkOrderAndSigns) {
  NLPacket packet;
  packet.insert(-2L);
  packet.insert(static_cast<const char*>(nullptr));
  packet.insert("hi");
  EXPECT_EQ(std::string(packet.data(), packet.size()), std::string("\xFF\xFF\xFF\xFEhi\0", 7));
  long large = 0;
  packet.remove(large);
  EXPECT_EQ(large, -2);
}

TEST(NLPacket, GrowsByTheRequestAndSlack) {
  NLPacket packet;
  packet.insert(1);
  EXPECT_EQ(packet.capacity(), 132U);
  const std::string bytes(124, 'b');
  packet.insert(bytes.data(), bytes.size());
  EXPECT_EQ(packet.capacity(), 132U);
  packet.insert(2);  // exactly four bytes are free
  EXPECT_EQ(packet.capacity(), 264U);
  EXPECT_EQ(std::string(packet.data() + 4, 124), bytes);
  EXPECT_EQ(NLPacket(10).capacity(), 138U);
  EXPECT_THROW(packet.p_growToHold(std::numeric_limits<unsigned long>::max()), NLException);
  EXPECT_THROW(packet.p_growToHold(std::numeric_limits<std::uint32_t>::max() - 128UL), NLException);
  EXPECT_EQ(packet.capacity(), 264U);
}

TEST(NLPacket, CutsStringsAndReadsNothingPastTheEnd) {
  NLPacket packet;
  packet.insert("words");
  packet.insert("raw", 3);
  char buffer[5] = "????";
  packet.remove(buffer, 4);
  EXPECT_STREQ(buffer, "wor");
  int number = 0;
  EXPECT_THROW(packet.remove(number), NLException);
  EXPECT_THROW(packet.remove(buffer, 5), NLException) << "no terminator before the end";
  EXPECT_THROW(packet.remove(static_cast<void*>(buffer), 4), NLException);
  EXPECT_EQ(packet.readPosition(), 6U) << "all of the first string is passed over, no more";
  packet.remove(buffer, 3);
  EXPECT_STREQ(buffer, "ra");
}

TEST(NLDebug, DumpsLinesOfSixteen) {
  NLDebug::m_on = true;
  const std::string fifteen = "61 61 61 61 61 61 61 61 61 61 61 61 61 61 61 ";
  const std::string line = fifteen + "61   |  aaaaaaaaaaaaaaaa\n";
  const std::pair<std::string, std::string> cases[] = {
      {"\xFF\n~", "ff 0a 7e " + std::string(39, ' ') + "  |  ..~"},
      {std::string(15, 'a'), fifteen},
      {std::string(16, 'a'), line + "  |  "},
      {std::string(17, 'a'), line + "61 " + std::string(45, ' ') + "  |  a"},
  };
  for (const auto& [data, body] : cases) {
    testing::internal::CaptureStdout();
    NLDebug::dump(data.data(), data.size(), "title");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "----------\ntitle\n(dumping " +
                                                          std::to_string(data.size()) +
                                                          " bytes)\n" + body + "\n----------\n");
  }
}

TEST(NLDebug, IsSwitchedByTheEnvironment) {
  testing::internal::CaptureStderr();
  for (const char* value : {"1", "0"}) {
    ::setenv("CORVANE_NET_DEBUG", value, 1);
    NLDebug::switchOnFromEnvironment();
    NLDebug::print(value);
  }
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "debug: 1\n");
}

}  // namespace
}  // namespace corvane
