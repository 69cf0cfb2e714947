#include "support/ScriptedServer.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>

#include <array>
#include <stdexcept>
#include <tuple>

namespace corvane {

std::pair<UniqueFd, std::uint16_t> ScriptedServer::ListenOnHost() const {
  UniqueFd listener(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(host_);
  socklen_t length = sizeof address;
  auto* const plain = reinterpret_cast<sockaddr*>(&address);
  if (::bind(listener.get(), plain, length) != 0 || ::listen(listener.get(), 16) != 0 ||
      ::getsockname(listener.get(), plain, &length) != 0) {
    throw std::runtime_error("cannot listen on the loopback interface");
  }
  return {std::move(listener), ntohs(address.sin_port)};
}

ScriptedServer::ScriptedServer(std::uint32_t host) : host_(host), stop_(::eventfd(0, EFD_CLOEXEC)) {
  std::tie(listener_, port_) = ListenOnHost();
  thread_ = std::thread([this] { Listen(); });
}

ScriptedServer::~ScriptedServer() {
  ::eventfd_write(stop_.get(), 1);
  thread_.join();
}

std::string ScriptedServer::Host() const {
  const in_addr address = {htonl(host_)};
  std::array<char, INET_ADDRSTRLEN> text{};
  return ::inet_ntop(AF_INET, &address, text.data(), text.size());
}

void ScriptedServer::Listen() {
  std::vector<std::thread> sessions;
  std::array<pollfd, 2> waits = {{{listener_.get(), POLLIN, 0}, {stop_.get(), POLLIN, 0}}};
  while (::poll(waits.data(), waits.size(), -1) >= 0 && waits[1].revents == 0) {
    UniqueFd control(::accept4(listener_.get(), nullptr, nullptr, SOCK_CLOEXEC));
    if (!control) continue;
    sessions.emplace_back(&ScriptedServer::Serve, this, std::move(control));
  }
  for (std::thread& session : sessions) session.join();
}

void ScriptedServer::On(const std::string& verb, ScriptedAction action, int occurrence) {
  const MutexLock hold(lock_);
  script_.insert_or_assign({verb, occurrence}, std::move(action));
}

ScriptedAction ScriptedServer::Next(const std::string& verb) {
  const MutexLock hold(lock_);
  const int occurrence = ++seen_[verb];
  for (const int key : {occurrence, 0}) {
    if (const auto found = script_.find({verb, key}); found != script_.end()) return found->second;
  }
  return {};
}

void ScriptedServer::NoteCommand(const std::string& line) {
  const MutexLock hold(lock_);
  commands_.push_back(line);
  dialogue_ += "> " + line;
}

void ScriptedServer::NoteReply(const std::string& text) {
  const MutexLock hold(lock_);
  dialogue_ += "< " + text + (text.ends_with('\n') ? "" : "\n");
}

std::vector<std::string> ScriptedServer::Transcript() const {
  const MutexLock hold(lock_);
  return commands_;
}

std::string ScriptedServer::Dialogue() const {
  const MutexLock hold(lock_);
  return dialogue_;
}

}  // namespace corvane
