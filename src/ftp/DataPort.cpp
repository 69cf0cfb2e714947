#include "ftp/DataPort.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace corvane {
namespace {

constexpr std::size_t kBehindCode = 4;

bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

// Six numbers with commas between them at the front of `text`; nothing where there are none.
std::optional<std::array<unsigned, 6>> SixNumbers(std::string_view text) {
  std::array<unsigned, 6> numbers{};
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    if (i > 0) {
      const std::size_t comma = std::min(text.find_first_not_of(' '), text.size());
      if (!text.substr(comma).starts_with(',')) return std::nullopt;
      text.remove_prefix(comma + 1);
      text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
    }
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), numbers[i]);
    if (error != std::errc()) return std::nullopt;
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
  }
  return numbers;
}

}  // namespace

std::optional<std::uint16_t> PassivePort(std::string_view reply) {
  for (std::size_t at = kBehindCode; at < reply.size(); ++at) {
    if (!IsDigit(reply[at]) || IsDigit(reply[at - 1])) continue;
    const auto numbers = SixNumbers(reply.substr(at));
    if (!numbers) continue;
    if (std::ranges::any_of(*numbers, [](unsigned number) { return number > 255; })) break;
    const unsigned port = (*numbers)[4] * 256 + (*numbers)[5];
    return port == 0 ? std::nullopt : std::optional(static_cast<std::uint16_t>(port));
  }
  return std::nullopt;
}

// A digit as the delimiter could not be told from the port.
std::optional<std::uint16_t> ExtendedPort(std::string_view reply) {
  constexpr std::size_t kDelimiters = 3;
  for (std::size_t at = kBehindCode; at + kDelimiters < reply.size(); ++at) {
    const char delimiter = reply[at];
    const std::string_view rest = reply.substr(at + kDelimiters);
    if (delimiter < 33 || delimiter > 126 || IsDigit(delimiter)) continue;
    if (reply[at + 1] != delimiter || reply[at + 2] != delimiter) continue;
    std::uint16_t port = 0;
    const auto [end, error] = std::from_chars(rest.data(), rest.data() + rest.size(), port);
    const bool closed = end != rest.data() + rest.size() && *end == delimiter;
    if (error == std::errc() && closed && port != 0) return port;
  }
  return std::nullopt;
}

std::string PortCommand(const NLAddress& address) {
  std::string host = address.text();
  std::ranges::replace(host, '.', ',');
  const unsigned port = address.port();
  return "PORT " + host + "," + std::to_string(port >> 8) + "," + std::to_string(port & 255);
}

// A scope means something on this machine only.
std::string ExtendedPortCommand(const NLAddress& address) {
  const std::string host = address.text();
  return "EPRT |" + std::string(address.family() == AF_INET6 ? "2" : "1") + "|" +
         host.substr(0, host.find('%')) + "|" + std::to_string(address.port()) + "|";
}

}  // namespace corvane
