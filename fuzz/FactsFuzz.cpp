// Whatever a server tells by facts: parsing ends, every entry has a name within one line, nothing
// of an unknown type is taken for what can be followed, and a time that is told can be told back.
#include <cstdint>
#include <cstdlib>

#include "ftp/ListingFacts.h"
#include "ftp/ListingParser.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace corvane;
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  ListingParser parser(text, {}, ListingParser::Form::Facts);
  RemoteEntry entry;
  std::size_t names = 0;
  while (parser.Next(entry)) {
    names += entry.name.size() + entry.linkTarget.size();
    if (entry.name.empty() || names > size || entry.name.find('\n') != std::string::npos)
      std::abort();
    if (entry.size && (*entry.size < 0 || entry.kind != RemoteEntry::Kind::File)) std::abort();
    if (!entry.linkTarget.empty() && entry.kind != RemoteEntry::Kind::Link) std::abort();
    if (!entry.modified) continue;
    const auto written = WriteTimeVal(entry.modified->seconds);
    if (written && ReadTimeVal(*written) != entry.modified) std::abort();
  }
  return 0;
}
