#include "ftp/ListingNetware.h"

#include "ftp/ListingTimes.h"
#include "ftp/ListingWords.h"

namespace corvane {

bool ReadNetwareLine(ListingLine& line, RemoteEntry& entry) {
  using Kind = RemoteEntry::Kind;
  constexpr std::string_view kRights = "RWCEMFASX-";
  std::string_view rest = line.text;
  const char type = rest.front();
  if (type != 'd' && type != '-') return false;
  rest.remove_prefix(1);
  SkipBlanks(rest);
  const std::size_t end = rest.find(']');
  if (!rest.starts_with('[') || end == std::string_view::npos) return false;
  const std::string_view rights = rest.substr(1, end - 1);
  if (rights.find_first_not_of(kRights) != std::string_view::npos) return false;
  rest.remove_prefix(end + 1);
  const Words words = WordsOf(rest);
  for (std::size_t at = 2; at < words.count; ++at) {
    const auto time = TimeAt(rest, words, at, line.now);
    if (!time || !time->known || !IsSize(words[at - 1])) continue;
    entry = {};
    entry.kind = type == 'd' ? Kind::Directory : Kind::File;
    entry.mode = line.text.substr(0, line.text.size() - rest.size());
    entry.owner =
        WithoutBlanks(rest.substr(0, static_cast<std::size_t>(words[at - 1].data() - rest.data())));
    if (entry.kind == Kind::File) entry.size = SizeOf(words[at - 1]);
    entry.modified = time->time;
    std::string_view name = Behind(rest, words[at + time->words - 1]);
    SkipBlanks(name);
    entry.name = name;
    return !name.empty();
  }
  return false;
}

}  // namespace corvane
