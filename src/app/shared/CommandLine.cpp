#include "app/shared/CommandLine.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <string_view>

namespace corvane {
namespace {

/// A port in decimal digits; nothing when it is none.
std::optional<std::uint16_t> ReadPort(std::string_view digits) {
  std::uint16_t port = 0;
  const char* end = digits.data() + digits.size();
  const auto [stop, error] = std::from_chars(digits.data(), end, port);
  if (error != std::errc{} || stop != end || port == 0) return {};
  return port;
}

/// "host/path" or, behind a user and password, "host:port/path". False when the port is none.
bool ReadHost(std::string_view rest, bool withPort, Message& message) {
  const std::size_t slash = std::min(rest.find('/'), rest.size());
  std::string_view host = rest.substr(0, slash);
  const std::string_view path = rest.substr(slash);
  if (const std::size_t colon = host.find(':'); withPort && colon != std::string_view::npos) {
    const auto port = ReadPort(host.substr(colon + 1));
    if (!port.has_value()) return false;
    message.AddInt16("port", static_cast<std::int16_t>(*port));
    host = host.substr(0, colon);
  }
  if (!host.empty()) message.AddString("host", host);
  if (path.size() > 1) message.AddString("path", path);
  return true;
}

/// Without "user:password@", whatever stands before a ":" is the user, and no port is known: so
/// h:2121 is the host 2121 and the user h.
CommandLine ReadUrl(std::string_view rest) {
  Message message("OPNC"_what);
  bool password = false;
  std::size_t begin = 0;
  for (std::size_t i = 0; i < rest.size() && !password && rest[i] != '/'; ++i) {
    if (rest[i] == ':') {
      message.AddString("user", rest.substr(begin, i - begin));
      begin = i + 1;
    } else if (rest[i] == '@') {
      message.AddString("pass", rest.substr(begin, i - begin));
      begin = i + 1;
      password = true;
    }
  }
  CommandLine line;
  if (!ReadHost(rest.substr(begin), password, message)) {
    line.usage = true;
  } else if (message.FindString("host").has_value()) {
    line.open = std::move(message);
  }
  return line;
}

}  // namespace

CommandLine CommandLine::Read(std::span<const std::string> arguments) {
  constexpr std::string_view kScheme = "ftp://";
  CommandLine line;
  if (arguments.empty()) return line;
  const bool login = arguments.size() == 2 && arguments.back() == "login";
  if (arguments.front() == "-deskbar" && (arguments.size() == 1 || login)) {
    line.deskbar = true;
    line.login = login;
  } else if (arguments.size() > 1 || arguments.front().starts_with('-')) {
    line.usage = true;
  } else if (arguments.front().starts_with(kScheme)) {
    line = ReadUrl(std::string_view(arguments.front()).substr(kScheme.size()));
  }
  return line;
}

}  // namespace corvane
