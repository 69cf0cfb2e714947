// Whatever a server tells in a reply of its features, of a port, a size, a time or a checksum:
// reading ends, what was read stands in the reply, and what it would have the client send back is
// one short line of facts that the client knows.

#include "Fuzz.h"
#include "ftp/DataPort.h"
#include "ftp/FtpFeatures.h"
#include "ftp/ListingFacts.h"
#include "ftp/ReplyReader.h"

namespace {

using namespace corvane;

void CheckPorts(std::string_view reply) {
  const auto has = [reply](const std::string& text) {
    return reply.find(text) != std::string_view::npos;
  };
  if (const auto port = PassivePort(reply)) {
    Check(*port != 0 && has(std::to_string(*port / 256)) && has(std::to_string(*port % 256)));
    const std::string six =
        "227 1,2,3,4," + std::to_string(*port / 256) + "," + std::to_string(*port % 256);
    Check(PassivePort(six) == port);
  }
  if (const auto port = ExtendedPort(reply)) {
    const std::string digits = std::to_string(*port);
    Check(*port != 0 && has(digits) && ExtendedPort("229 (|||" + digits + "|)") == port);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view reply(reinterpret_cast<const char*>(data), size);
  const FtpFeatures features = ReadFeatures(reply);
  constexpr std::string_view kKnown = "abcdefghijklmnopqrstuvwxyz.;";
  Check(features.neededFacts.size() <= 120);
  Check(features.neededFacts.find_first_not_of(kKnown) == std::string::npos);
  const auto room = ReadQuota(reply);
  Check(!room || *room >= 0);
  CheckPorts(reply);
  const Reply status{213, std::string(reply), std::string(reply)};
  if (const auto number = status.FileStatus()) {
    const std::string digits = std::to_string(*number);
    Check(*number >= 0 && reply.find(digits) != std::string_view::npos);
  }
  if (const auto time = ReadTimeVal(reply)) {
    const auto written = WriteTimeVal(time->seconds);
    Check(!written || ReadTimeVal(*written) == time);
  }
  for (const DigestWay& way : features.digests) {
    const auto digest = ReadDigest(way, reply);
    Check(!digest || (!digest->empty() && digest->size() * 2 <= reply.size()));
  }
  return 0;
}
