#include "util/GetTruncatedString.h"

#include <cstddef>
#include <utility>
#include <vector>

namespace corvane {
namespace {

constexpr std::string_view kEllipsis = "\u2026";

// Where each character begins, and the text's end.
std::vector<std::size_t> CharacterStarts(std::string_view text) {
  std::vector<std::size_t> starts;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if ((static_cast<unsigned char>(text[i]) & 0xC0) != 0x80) starts.push_back(i);
  }
  if (starts.empty() || starts.front() != 0) starts.insert(starts.begin(), 0);
  starts.push_back(text.size());
  return starts;
}

std::string Shortened(std::string_view text, const std::vector<std::size_t>& starts,
                      std::size_t kept, Truncation mode) {
  const std::size_t front = mode == Truncation::End      ? kept
                            : mode == Truncation::Middle ? kept - kept / 2
                                                         : 0;
  const std::size_t back = kept - front;
  std::string result(text.substr(0, starts[front]));
  result += kEllipsis;
  result += text.substr(starts[starts.size() - 1 - back]);
  return result;
}

}  // namespace

std::string GetTruncatedString(std::string_view text, const TextWidth& measure, float width,
                               Truncation mode) {
  if (measure(text) <= width) return std::string(text);
  const std::vector<std::size_t> starts = CharacterStarts(text);
  std::string best;  // what stays where even the ellipsis is too wide
  std::size_t low = 0;
  std::size_t high = starts.size() - 1;
  while (low < high) {
    const std::size_t middle = low + (high - low) / 2;
    std::string candidate = Shortened(text, starts, middle, mode);
    if (measure(candidate) <= width) {
      best = std::move(candidate);
      low = middle + 1;
    } else {
      high = middle;
    }
  }
  return best;
}

std::string GetTruncatedString(std::string_view text, const TextWidth& measure, float width) {
  // Room for the dots of the first round, which stand two bytes beyond the text, and a final NUL.
  std::string buffer(text);
  buffer.resize(text.size() + 3);
  const auto put = [&buffer](std::ptrdiff_t at, char c) {
    buffer[static_cast<std::size_t>(at)] = c;
  };
  const auto before = [&buffer](std::ptrdiff_t at) {
    return buffer[static_cast<std::size_t>(at - 1)];
  };
  for (auto k = static_cast<std::ptrdiff_t>(text.size()) - 1; k >= -2; --k) {
    if (measure(buffer.c_str()) <= width) break;
    while (k > 0 && before(k) == ' ') --k;
    if (k > 0 || (k == 0 && buffer[0] == ' ')) put(k, '.');
    if (k >= 0) put(k + 1, '.');
    if (k >= -1) put(k + 2, '.');
    put(k + 3, '\0');
  }
  buffer.resize(buffer.find('\0'));
  return buffer;
}

}  // namespace corvane
