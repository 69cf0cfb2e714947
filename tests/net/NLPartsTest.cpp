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

TEST(NLPacket, KeepsNetworkOrderGrowsAndReadsNothingPastTheEnd) {
  NLPacket packet;
  packet.insert(-2L);
  packet.insert("words");
  const std::string bytes(118, 'b');
  packet.insert(bytes.data(), bytes.size());
  packet.insert(2);  // exactly four bytes are free
  EXPECT_EQ(packet.capacity(), 264U);
  EXPECT_EQ(std::string(packet.data(), 9), "\xFF\xFF\xFF\xFEwords");
  long large = 0;
  char buffer[128] = "";
  packet.remove(large);
  packet.remove(buffer, 4);
  EXPECT_EQ(large, -2);
  EXPECT_STREQ(buffer, "wor") << "the rest of the string is passed over";
  EXPECT_THROW(packet.remove(static_cast<void*>(buffer), 123), NLException);
  packet.remove(static_cast<void*>(buffer), 118);
  EXPECT_EQ(std::string(buffer, 118), bytes);
  EXPECT_THROW(packet.p_growToHold(std::numeric_limits<std::uint32_t>::max() - 128UL), NLException);
}

}  // namespace
}  // namespace corvane
