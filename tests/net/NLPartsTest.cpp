#include <arpa/inet.h>
#include <gtest/gtest.h>

#include <limits>
#include <string>

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

TEST(NLException, KeepsWhatFits) {
  EXPECT_EQ(NLException("f", std::string(300, 'm')).message, std::string(254, 'm'));
}

TEST(NLPacket, KeepsNetworkOrderAndGrows) {
  NLPacket packet;
  packet.insert(-2L);
  packet.insert(static_cast<const char*>(nullptr));
  packet.insert("hi");
  const std::string bytes(121, 'b');
  packet.insert(bytes.data(), bytes.size());
  EXPECT_EQ(packet.capacity(), 132U);
  packet.insert(2);  // exactly four bytes are free
  EXPECT_EQ(packet.capacity(), 264U);
  EXPECT_EQ(std::string(packet.data(), 128), "\xFF\xFF\xFF\xFEhi" + std::string(1, '\0') + bytes);
  long large = 0;
  packet.remove(large);
  EXPECT_EQ(large, -2);
  EXPECT_THROW(packet.p_growToHold(std::numeric_limits<unsigned long>::max()), NLException);
  EXPECT_THROW(packet.p_growToHold(std::numeric_limits<std::uint32_t>::max() - 128UL), NLException);
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

}  // namespace
}  // namespace corvane
