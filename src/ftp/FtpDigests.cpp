#include "ftp/FtpDigests.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <cstddef>
#include <cstdint>

namespace corvane {
namespace {

constexpr std::string_view kHash = "HASH";

struct Kind {
  DigestKind kind;
  std::size_t bytes;
  std::string_view hashName;
  std::array<std::string_view, 2> verbs;
};

constexpr std::array<Kind, 5> kKinds = {{
    {DigestKind::Crc32, 4, "CRC32", {"XCRC", ""}},
    {DigestKind::Md5, 16, "MD5", {"XMD5", "MD5"}},
    {DigestKind::Sha1, 20, "SHA-1", {"XSHA1", "XSHA"}},
    {DigestKind::Sha256, 32, "SHA-256", {"XSHA256", ""}},
    {DigestKind::Sha512, 64, "SHA-512", {"XSHA512", ""}},
}};

bool IsSame(std::string_view a, std::string_view b) {
  return std::ranges::equal(
      a, b, [](unsigned char x, unsigned char y) { return std::tolower(x) == std::tolower(y); });
}

// The words of letters and digits in a text.
std::vector<std::string_view> Words(std::string_view text) {
  std::vector<std::string_view> words;
  const auto isPart = [](unsigned char c) { return std::isalnum(c) != 0; };
  for (auto at = text.begin(); at != text.end();) {
    const auto begin = std::find_if(at, text.end(), isPart);
    at = std::find_if_not(begin, text.end(), isPart);
    if (at != begin) words.emplace_back(begin, at);
  }
  return words;
}

bool IsHex(std::string_view word) {
  return std::ranges::all_of(word, [](unsigned char c) { return std::isxdigit(c) != 0; });
}

std::string Bytes(std::string word) {
  std::string bytes;
  for (std::size_t i = 0; i + 1 < word.size(); i += 2) {
    std::uint8_t byte = 0;
    std::from_chars(word.data() + i, word.data() + i + 2, byte, 16);
    bytes.push_back(static_cast<char>(byte));
  }
  return bytes;
}

}  // namespace

void TakeDigests(std::string_view verb, std::string_view rest, std::vector<DigestWay>& ways) {
  const auto add = [&ways](DigestWay way) {
    if (std::ranges::find(ways, way) == ways.end()) ways.push_back(std::move(way));
  };
  for (const Kind& kind : kKinds) {
    for (const std::string_view own : kind.verbs)
      if (!own.empty() && IsSame(verb, own)) add({kind.kind, std::string(own)});
    for (std::string_view left = rest; IsSame(verb, kHash) && !left.empty();) {
      const std::size_t end = std::min(left.find(';'), left.size());
      std::string_view name = left.substr(0, end);
      left.remove_prefix(std::min(end + 1, left.size()));
      while (name.starts_with(' ')) name.remove_prefix(1);
      while (name.ends_with('*') || name.ends_with(' ')) name.remove_suffix(1);
      if (IsSame(name, kind.hashName)) add({kind.kind, std::string(kHash)});
    }
  }
  std::ranges::stable_sort(ways, [](const DigestWay& a, const DigestWay& b) {
    return a.kind != b.kind ? a.kind > b.kind : a.verb == kHash && b.verb != kHash;
  });
}

std::string_view HashName(DigestKind kind) {
  const auto* const found = std::ranges::find(kKinds, kind, &Kind::kind);
  return found != kKinds.end() ? found->hashName : std::string_view();
}

// The verbs that are not HASH take more words behind the name, which is quoted for that.
std::optional<std::string> DigestCommand(const DigestWay& way, const std::string& name) {
  if (way.verb == kHash) return way.verb + " " + name;
  if (name.find('"') != std::string::npos) return std::nullopt;
  return way.verb.starts_with('X') ? way.verb + " \"" + name + "\"" : way.verb + " " + name;
}

std::optional<std::string> ReadDigest(const DigestWay& way, std::string_view text) {
  const auto* const kind = std::ranges::find(kKinds, way.kind, &Kind::kind);
  if (kind == kKinds.end()) return std::nullopt;
  const std::size_t length = 2 * kind->bytes;
  const bool byHash = way.verb == kHash;
  // It names the kind that it has used.
  if (byHash && !IsSame(text.substr(0, kind->hashName.size()), kind->hashName)) return std::nullopt;
  const std::vector<std::string_view> words = Words(text);
  std::vector<std::string_view> found;
  for (const std::string_view word : words)
    if (word.size() == length && IsHex(word)) found.push_back(word);
  // A number may have lost its leading zeros.
  if (way.kind == DigestKind::Crc32 && words.size() == 1 && IsHex(words[0]) &&
      words[0].size() < length)
    return Bytes(std::string(length - words[0].size(), '0') + std::string(words[0]));
  if (found.empty()) return std::nullopt;
  if (byHash) return Bytes(std::string(found.front()));  // the name comes last
  if (way.verb == "MD5") return Bytes(std::string(found.back()));
  if (!std::ranges::all_of(found, [&](auto word) { return IsSame(word, found.front()); }))
    return std::nullopt;
  return Bytes(std::string(found.front()));
}

}  // namespace corvane
