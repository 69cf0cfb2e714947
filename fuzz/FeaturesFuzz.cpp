// Whatever a server lists as its features: reading ends, and what it would have the client send
// back is one short line of facts that the client knows.
#include <cstdint>
#include <cstdlib>

#include "ftp/FtpFeatures.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace corvane;
  const std::string_view reply(reinterpret_cast<const char*>(data), size);
  const FtpFeatures features = ReadFeatures(reply);
  constexpr std::string_view kKnown = "abcdefghijklmnopqrstuvwxyz.;";
  if (features.neededFacts.size() > 120) std::abort();
  if (features.neededFacts.find_first_not_of(kKnown) != std::string::npos) std::abort();
  (void)ReadQuota(reply);
  return 0;
}
