#include "util/Digest.h"

#include <gtest/gtest.h>

#include <string_view>

namespace corvane {
namespace {

std::string Hex(const std::string& bytes) {
  std::string hex;
  for (const char byte : bytes) {
    hex += "0123456789abcdef"[(byte >> 4) & 15];
    hex += "0123456789abcdef"[byte & 15];
  }
  return hex;
}

// The example "abc" of the standards, whole and in pieces, twice by one object.
TEST(Digest, IsTheOneOfTheStandards) {
  const std::pair<DigestKind, std::string> kinds[] = {
      {DigestKind::None, ""},
      {DigestKind::Crc32, "352441c2"},
      {DigestKind::Md5, "900150983cd24fb0d6963f7d28e17f72"},
      {DigestKind::Sha1, "a9993e364706816aba3e25717850c26c9cd0d89d"},
      {DigestKind::Sha256, "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad"},
      {DigestKind::Sha512,
       "ddaf35a193617abacc417349ae20413112e6fa4e89a97ea20a9eeee64b55d39a2192992a274fc1a836ba3c23a3"
       "feebbd454d4423643ce80e2a9ac94fa54ca49f"}};
  for (const auto& [kind, expected] : kinds) {
    Digest digest(kind);
    for (const auto& pieces : {std::pair("abc", ""), std::pair("a", "bc")}) {
      digest.Add(std::string_view(pieces.first));
      digest.Add(std::string_view(pieces.second));
      EXPECT_EQ(Hex(digest.Take()), expected);
    }
  }
}

}  // namespace
}  // namespace corvane
