// Whatever a server lists: parsing ends, and every entry has a name that lies within the text.
#include <cstdlib>

#include "ftp/ListingParser.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace corvane;
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  EntryMaker maker(std::tm{});
  ListingParser parser(text, size % 2 == 0);
  ListingParser::Fields fields;
  std::size_t names = 0;
  while (parser.Next(fields)) {
    const fileStruct& entry = maker.Make(fields);
    names += fields.name.size();
    if (fields.name.empty() || names > size || entry.name.find('\n') != std::string::npos)
      std::abort();
  }
  return 0;
}
