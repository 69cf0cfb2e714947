#include "net/NLAddress.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>

#include <string>

#include "net/NLException.h"
#include "net/NLLookup.h"

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

TEST(NLAddress, EverySetterReplacesTheWhole) {
  sockaddr_in raw{};
  raw.sin_family = AF_INET;
  raw.sin_port = htons(2121);
  raw.sin_addr.s_addr = htonl(0x0A010203);
  EXPECT_EQ(Text(NLAddress("10.0.0.1", 21)), "10.0.0.1:21");
  EXPECT_EQ(Text(NLAddress(NLAddress::any, 65535)), "0.0.0.0:65535");
  EXPECT_EQ(Text(NLAddress(raw.sin_addr, 8080)), "10.1.2.3:8080");
  EXPECT_EQ(Text(NLAddress("0.0.0.0", 7)), "0.0.0.0:7");
  EXPECT_EQ(Text(NLAddress("localhost", 7)), "127.0.0.1:7");

  NLAddress address(raw);
  EXPECT_EQ(Text(address), "10.1.2.3:2121");
  address.set(nullptr, 0);
  EXPECT_EQ(Text(address), "0.0.0.0:0");
}

TEST(NLAddress, AnUnknownNameThrowsAndChangesNothing) {
  NLAddress address("127.0.0.1", 21);
  try {
    address.set(kNoName.c_str(), 5);
    FAIL();
  } catch (const NLException& exception) {
    EXPECT_STREQ(exception.function, "NLAddress::set");
    EXPECT_STREQ(exception.file, "NLAddress.cpp");
    EXPECT_EQ(std::string(exception.message).find("::gethostbyname failed for host name nnnn"), 0U);
  }
  EXPECT_EQ(Text(address), "127.0.0.1:21");
}

TEST(NLException, KeepsWhatFitsAndReports) {
  NLException exception("f", std::string(300, 'm'), nullptr, "a/b/File.cpp", 12);
  EXPECT_EQ(std::string(exception.message), std::string(254, 'm'));
  exception = NLException("f()", "text", nullptr, "a/b/File.cpp", 12);
  EXPECT_EQ(exception.Text(),
            "......\nNetworking Library Exception\nf()\n( File \"File.cpp\"; Line 12) : text\n"
            "......\n");
}

TEST(NLLookup, AnswersThrowsAndIsGivenUp) {
  EXPECT_EQ(Text(NLLookup("localhost", 21).get()), "127.0.0.1:21");
  EXPECT_THROW((void)NLLookup(kNoName, 21).get(), NLException);
  NLLookup lookup("localhost", 21);
  lookup.cancel();
  EXPECT_THROW((void)lookup.get(), NLException);
}

}  // namespace
}  // namespace corvane
