// Whatever a server lists: parsing ends, and every entry has a name of its own within one line.
#include <cstdint>
#include <cstdlib>

#include "ftp/ListingParser.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace corvane;
  using namespace std::chrono_literals;
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  ListingParser parser(text, 2024y / 3 / 15);
  RemoteEntry entry;
  std::size_t names = 0;
  while (parser.Next(entry)) {
    names += entry.name.size();
    if (entry.name.empty() || names > size || entry.name.find('\n') != std::string::npos)
      std::abort();
  }
  return 0;
}
