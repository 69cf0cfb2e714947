#include "ftp/ListingHeadings.h"

#include <algorithm>
#include <array>

#include "ftp/ListingWords.h"

namespace corvane {
namespace {

// "total 42", in whatever language.
bool IsTotal(const Words& words) {
  if (words.count == 1) return Is(words[0], "total");
  if (words.count != 2 && !(words.count == 3 && words[1] == ":")) return false;
  const auto hasDigit = [](std::string_view word) { return std::ranges::any_of(word, IsDigit); };
  return !hasDigit(words[0]) && IsSize(words[words.count - 1]);
}

bool IsRule(std::string_view line) {
  return line.find_first_not_of(" \t-=") == std::string_view::npos;
}

// "3 File(s)  2,048 bytes".
bool IsCount(const Words& words) {
  constexpr std::array<std::string_view, 6> kWhat = {"file(s)", "dir(s)", "files",
                                                     "file",    "dirs",   "directories"};
  return words.count >= 2 && SizeOf(words[0]) &&
         std::ranges::any_of(kWhat, [&](auto what) { return Is(words[1], what); });
}

}  // namespace

bool IsHeading(std::string_view line, bool first, ListingColumns& columns) {
  constexpr std::array<std::string_view, 8> kBegins = {
      "volume in drive ", "volume serial number ", "directory of ", "total of ",
      "grand total of ",  "total files listed",    "file name ",    "directory "};
  const Words words = WordsOf(line);
  const auto head = [&words](std::string_view one, std::string_view two, std::string_view three) {
    return Is(words[0], one) && Is(words[1], two) && Is(words[2], three);
  };
  if (head("volume", "unit", "referred")) return columns = ListingColumns::DataSets, true;
  if (head("name", "vv.mm", "created")) return columns = ListingColumns::Members, true;
  if (head("name", "size", "ttr")) return columns = ListingColumns::Modules, true;
  if (head("size", "date", "time") || IsRule(line) || IsCount(words)) return true;
  if (first && IsTotal(words)) return true;
  const std::string_view text = WithoutBlanks(line);
  return std::ranges::any_of(kBegins, [text](auto begin) { return Begins(text, begin); });
}

}  // namespace corvane
