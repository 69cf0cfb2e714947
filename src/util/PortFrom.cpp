#include "util/PortFrom.h"

#include <algorithm>
#include <charconv>

namespace corvane {

std::uint16_t PortFrom(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(" \t"), text.size()));
  std::uint16_t port = 0;
  const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), port);
  return error == std::errc() ? port : std::uint16_t{0};
}

}  // namespace corvane
