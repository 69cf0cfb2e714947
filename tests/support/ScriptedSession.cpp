#include "support/ScriptedSession.h"

#include <arpa/inet.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <stdexcept>
#include <tuple>

namespace corvane {

void MakeCloseReset(int fd) {
  const linger now = {1, 0};
  ::setsockopt(fd, SOL_SOCKET, SO_LINGER, &now, sizeof now);
}

std::pair<UniqueFd, std::uint16_t> ListenOnLoopback() {
  UniqueFd listener(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t length = sizeof address;
  auto* const plain = reinterpret_cast<sockaddr*>(&address);
  if (::bind(listener.get(), plain, length) != 0 || ::listen(listener.get(), 16) != 0 ||
      ::getsockname(listener.get(), plain, &length) != 0) {
    throw std::runtime_error("cannot listen on the loopback interface");
  }
  return {std::move(listener), ntohs(address.sin_port)};
}

ScriptedSession::ScriptedSession(ScriptedServer& server, UniqueFd control, int number)
    : server_(server), control_(std::move(control)), number_(number) {
  const int on = 1;
  ::setsockopt(control_.get(), IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
}

void ScriptedSession::Run() {
  Perform("greeting", "");
  while (control_) {
    const std::optional<std::string> line = ReadLine();
    if (!line) return;
    server_.Note(number_, true, *line);
    const std::string text = line->substr(0, line->find_last_not_of("\r\n") + 1);
    const std::size_t blank = std::min(text.find(' '), text.size());
    std::string verb = text.substr(0, blank);
    std::transform(verb.begin(), verb.end(), verb.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    Perform(verb, blank < text.size() ? text.substr(blank + 1) : "");
  }
}

std::optional<std::string> ScriptedSession::ReadLine() {
  std::size_t end = 0;
  while ((end = input_.find('\n')) == std::string::npos) {
    std::array<char, 4096> block;
    if (!Wait(control_.get(), POLLIN)) return std::nullopt;
    const ssize_t count = ::recv(control_.get(), block.data(), block.size(), 0);
    if (count <= 0) return std::nullopt;
    input_.append(block.data(), static_cast<std::size_t>(count));
  }
  std::string line = input_.substr(0, end + 1);
  input_.erase(0, end + 1);
  return line;
}

void ScriptedSession::Perform(const std::string& verb, const std::string& argument) {
  action_ = server_.Next(verb);
  if (action_.arrived) action_.arrived();
  if (action_.delay.count() > 0) {
    pollfd stop = {server_.stop_.get(), POLLIN, 0};
    if (::poll(&stop, 1, static_cast<int>(action_.delay.count())) != 0) return control_.reset();
  }
  if (verb == "PASV") {
    std::tie(passive_, passivePort_) = ListenOnLoopback();
    if (action_.dataEnd == DataEnd::Never) passive_.reset();
  }
  if (action_.reply) {
    Say(*action_.reply);
  } else {
    Dispatch(verb, argument);
  }
  if (action_.control == ControlEnd::Reset) MakeCloseReset(control_.get());
  if (action_.control != ControlEnd::Open) control_.reset();
}

void ScriptedSession::Say(std::string text) {
  if (const std::size_t at = text.find("{port}"); at != std::string::npos) {
    text.replace(at, 6,
                 std::to_string(passivePort_ / 256) + "," + std::to_string(passivePort_ % 256));
  }
  if (text.empty()) return;
  server_.Note(number_, false, text);
  const std::size_t step = action_.byteByByte ? 1 : text.size();
  for (std::size_t at = 0; at < text.size(); at += step) {
    if (!Write(control_.get(), std::string_view(text).substr(at, step))) return;
  }
}

bool ScriptedSession::Wait(int fd, short events, std::chrono::milliseconds limit) const {
  std::array<pollfd, 3> waits = {
      {{fd, events, 0}, {server_.stop_.get(), POLLIN, 0}, {control_.get(), POLLRDHUP, 0}}};
  return ::poll(waits.data(), waits.size(), static_cast<int>(limit.count())) > 0 &&
         waits[1].revents == 0 && waits[0].revents != 0;
}

bool ScriptedSession::Stall(int data) const {
  std::array<pollfd, 4> waits = {{{server_.released_.get(), POLLIN, 0},
                                  {server_.stop_.get(), POLLIN, 0},
                                  {control_.get(), POLLRDHUP, 0},
                                  {data, POLLRDHUP, 0}}};
  return ::poll(waits.data(), waits.size(), 20'000) > 0 && waits[0].revents != 0;
}

bool ScriptedSession::Write(int fd, std::string_view bytes) const {
  while (!bytes.empty()) {
    if (!Wait(fd, POLLOUT)) return false;
    const ssize_t count = ::send(fd, bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
    if (count <= 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
  return true;
}

}  // namespace corvane
