// Whatever a server lists, and in whatever pieces it comes: the text and the entries are the same,
// no line beyond the bound is kept, parsing ends, and every name stands as it is in one line.

#include "Fuzz.h"
#include "ftp/ListingParser.h"
#include "ftp/ListingText.h"

namespace {

using namespace corvane;
using namespace std::chrono_literals;

// The first byte says how long the pieces are, and changes from piece to piece.
void Fill(ListingText& text, std::string_view bytes, std::uint8_t seed) {
  std::size_t length = seed;
  while (!bytes.empty()) {
    const std::size_t count = std::min(length % 31 + 1, bytes.size());
    if (!text.Append({bytes.data(), count})) std::abort();
    bytes.remove_prefix(count);
    length = length * 5 + 3;
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::string_view bytes(reinterpret_cast<const char*>(data) + 1, size - 1);
  ListingText whole;
  ListingText pieces;
  Check(whole.Append({bytes.data(), bytes.size()}));
  Fill(pieces, bytes, data[0]);
  const std::string_view text = whole.View();
  Check(text == pieces.View() && whole.IsOpen() == pieces.IsOpen());
  Check(whole.Dropped() == pieces.Dropped() && text.size() <= bytes.size());

  const auto form = data[0] % 8 == 7 ? ListingParser::Form::Facts : ListingParser::Form::Lines;
  ListingParser parser(text, 2024y / 3 / 15, form);
  RemoteEntry entry;
  std::size_t names = 0;
  while (parser.Next(entry)) {
    names += entry.name.size() + entry.linkTarget.size();
    Check(!entry.name.empty() && names <= text.size());
    Check(entry.name.size() <= ListingParser::kMaxName &&
          entry.name.find('\n') == std::string::npos);
    Check(entry.name != "." && entry.name != "..");
    Check(text.find(entry.name) != std::string_view::npos);
    Check(!entry.size || (*entry.size >= 0 && entry.kind == RemoteEntry::Kind::File));
    Check(!entry.unclear || entry.kind == RemoteEntry::Kind::Link);
  }
  const auto lines = static_cast<std::size_t>(std::ranges::count(text, '\n')) + 1;
  Check(parser.Known() + parser.Strange() <= lines && parser.TooLong().size() <= parser.Known());
  return 0;
}
