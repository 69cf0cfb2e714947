#include "support/ScriptedServer.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>

#include <array>
#include <tuple>

#include "support/ScriptedSession.h"

namespace corvane {

ScriptedServer::ScriptedServer()
    : stop_(::eventfd(0, EFD_CLOEXEC)), released_(::eventfd(0, EFD_CLOEXEC)) {
  std::tie(listener_, port_) = ListenOnLoopback();
  thread_ = std::thread([this] { Listen(); });
}

ScriptedServer::~ScriptedServer() {
  Stop();
}

void ScriptedServer::Stop() {
  ::eventfd_write(stop_.get(), 1);
  if (thread_.joinable()) thread_.join();
}

void ScriptedServer::Release() {
  ::eventfd_write(released_.get(), 1);
}

void ScriptedServer::Listen() {
  std::vector<std::thread> sessions;
  std::array<pollfd, 2> waits = {{{listener_.get(), POLLIN, 0}, {stop_.get(), POLLIN, 0}}};
  while (::poll(waits.data(), waits.size(), -1) >= 0 && waits[1].revents == 0) {
    UniqueFd control(::accept4(listener_.get(), nullptr, nullptr, SOCK_CLOEXEC));
    if (!control) continue;
    int number = 0;
    {
      const MutexLock hold(lock_);
      number = ++connections_;
    }
    sessions.emplace_back([this, number, socket = std::move(control)]() mutable {
      ScriptedSession(*this, std::move(socket), number).Run();
    });
  }
  listener_.reset();
  for (std::thread& session : sessions) session.join();
}

void ScriptedServer::On(const std::string& verb, ScriptedAction action, int occurrence) {
  const MutexLock hold(lock_);
  script_.insert_or_assign({verb, occurrence}, std::move(action));
}

ScriptedAction ScriptedServer::Next(const std::string& verb) {
  const MutexLock hold(lock_);
  const int occurrence = ++seen_[verb];
  for (const auto& key : {std::pair(verb, occurrence), {verb, 0}, {std::string("*"), 0}}) {
    if (const auto found = script_.find(key); found != script_.end()) return found->second;
  }
  return {};
}

void ScriptedServer::Note(int connection, bool fromClient, std::string bytes) {
  const MutexLock hold(lock_);
  lines_.push_back({connection, fromClient, std::move(bytes)});
}

int ScriptedServer::Connections() const {
  const MutexLock hold(lock_);
  return connections_;
}

std::vector<std::string> ScriptedServer::Transcript(int connection) const {
  const MutexLock hold(lock_);
  std::vector<std::string> commands;
  for (const Line& line : lines_) {
    if (line.fromClient && (connection == 0 || connection == line.connection)) {
      commands.push_back(line.bytes);
    }
  }
  return commands;
}

std::string ScriptedServer::Dialogue() const {
  const MutexLock hold(lock_);
  std::string text;
  for (const Line& line : lines_) {
    text += std::to_string(line.connection) + (line.fromClient ? " > " : " < ") + line.bytes;
    if (!text.ends_with('\n')) text += '\n';
  }
  return text;
}

}  // namespace corvane
