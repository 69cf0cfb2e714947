#include "net/NLPacket.h"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <string>

#include "net/NLException.h"

namespace corvane {
namespace {

std::string Bytes(const NLPacket& packet) {
  return {packet.data(), packet.size()};
}

TEST(NLPacket, WritesIntegersInNetworkOrderAndTheRestAsItIs) {
  NLPacket packet;
  packet.insert(1);
  packet.insert(static_cast<unsigned short>(0x1234));
  packet.insert(-2L);
  packet.insert(static_cast<const char*>(nullptr));
  packet.insert(nullptr, 5);
  packet.insert("x", 0);
  packet.insert("hi");
  EXPECT_EQ(Bytes(packet), std::string("\0\0\0\1\x12\x34\xFF\xFF\xFF\xFEhi\0", 13));
  NLPacket real;
  real.insert(1.5F);
  float value = 0;
  std::memcpy(&value, real.data(), sizeof value);
  EXPECT_EQ(value, 1.5F);
}

// Reads a value back, and refuses to read it from fewer bytes than it has.
template <typename Value>
void Check(const std::string& word, Value value) {
  NLPacket packet;
  packet.insert(value);
  Value read{};
  packet.remove(read);
  EXPECT_EQ(read, value);
  packet.insert("rawbytes", packet.size() - 1);
  try {
    packet.remove(read);
    ADD_FAILURE() << word;
  } catch (const NLException& exception) {
    EXPECT_EQ(exception.function, "NLPacket::remove(" + word + ")");
    EXPECT_STREQ(exception.message, "Attempted read past end of packet");
  }
  EXPECT_EQ(packet.readPosition(), packet.size() / 2 + 1);
}

TEST(NLPacket, ReadsBackEveryTypeOrRefuses) {
  Check("char", 'c');
  Check("uchar", static_cast<unsigned char>(200));
  Check("short", static_cast<short>(-3));
  Check("ushort", static_cast<unsigned short>(65000));
  Check("int", std::numeric_limits<int>::min());
  Check("uint", std::numeric_limits<unsigned int>::max());
  Check("long", -5L);
  Check("ulong", 4000000000UL);
  Check("float", 1.5F);
  Check("double", -2.25);
}

TEST(NLPacket, GrowsByTheRequestAndSlack) {
  NLPacket packet;
  EXPECT_EQ(packet.capacity(), 0U);
  packet.insert(1);
  EXPECT_EQ(packet.capacity(), 132U);
  const std::string bytes(124, 'b');
  packet.insert(bytes.data(), bytes.size());
  EXPECT_EQ(packet.size(), 128U);
  EXPECT_EQ(packet.capacity(), 132U);
  packet.insert(2);  // exactly four bytes are free
  EXPECT_EQ(packet.capacity(), 264U);
  EXPECT_EQ(Bytes(packet), std::string("\0\0\0\1", 4) + bytes + std::string("\0\0\0\2", 4));
  EXPECT_EQ(NLPacket(10).capacity(), 138U);
  EXPECT_EQ(NLPacket(10).size(), 0U);
  EXPECT_THROW(packet.p_growToHold(std::numeric_limits<unsigned long>::max()), NLException);
  EXPECT_THROW(packet.p_growToHold(std::numeric_limits<std::uint32_t>::max() - 128UL), NLException);
  EXPECT_EQ(packet.capacity(), 264U);
}

TEST(NLPacket, StringsAreCutAndPassedOver) {
  NLPacket packet;
  packet.insert("words");
  packet.insert("more");
  packet.insert("raw", 3);
  char buffer[5] = "????";
  packet.remove(buffer, 4);
  EXPECT_STREQ(buffer, "wor");
  EXPECT_EQ(packet.readPosition(), 6U);
  packet.remove(buffer, 5);
  EXPECT_STREQ(buffer, "more");
  EXPECT_EQ(packet.readPosition(), 11U);
  EXPECT_THROW(packet.remove(buffer, 5), NLException) << "no terminator before the end";
  EXPECT_THROW(packet.remove(static_cast<void*>(buffer), 4), NLException);
  EXPECT_EQ(packet.readPosition(), 11U);
  packet.remove(buffer, 3);
  EXPECT_STREQ(buffer, "ra");
  EXPECT_FALSE(packet.p_verifySizeRemaining(1));
  EXPECT_THROW(packet.remove(buffer, 1), NLException);
}

}  // namespace
}  // namespace corvane
