#pragma once

#include <netinet/in.h>
#include <poll.h>

#include <cerrno>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "Fuzz.h"

namespace corvane {

/// The network as a session under test sees it, and the server at its other end, all in memory: the
/// linker leads the calls of sockets here. What the server does stands in a script, and where the
/// session would wait the script goes on, so that no run waits. One thread, one at a time.
///
/// A line is said on the control connection; after a last reply the server waits for a command. But
/// for these: '&' no wait after it; ':' no line end; '>' a line and '+' bytes of data; '.' the end
/// of the data; '!' its reset; '~' silence; '^' the next data connection is refused.
class FakeNet {
 public:
  static inline FakeNet* now = nullptr;
  explicit FakeNet(std::string_view script) : script_(script) { now = this; }
  ~FakeNet() { now = nullptr; }
  FakeNet(const FakeNet&) = delete;
  FakeNet& operator=(const FakeNet&) = delete;

  std::vector<std::string> commands;  ///< what was heard, without line ends
  std::size_t dataBytes = 0;          ///< put on data connections in all
  /// What was put on the last one.
  [[nodiscard]] const std::string& Data() const { return data_.bytes; }
  /// Whether the last transfer's data was ended, not reset, and a completion was said.
  [[nodiscard]] bool IsWhole() const { return data_.ended && !data_.reset && Said('2'); }
  /// Whether that transfer is neither whole nor refused.
  [[nodiscard]] bool IsBroken() const { return data_.fd != -1 && !IsWhole() && !Said('5'); }

  int Connect(int fd, std::uint16_t port) {
    if (!transfer_ && port == kControlPort) {
      control_ = {.fd = fd};
      heard_.clear();
      return 0;
    }
    if (!std::exchange(transfer_, false) || std::exchange(refuses_, false)) {
      errno = ECONNREFUSED;
      return -1;
    }
    data_.fd = fd;
    return 0;
  }
  int Accept() {
    transfer_ = false;
    return data_.fd = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  }
  [[nodiscard]] short Ready(int fd, short events) const {
    const Pipe& pipe = fd == control_.fd ? control_ : data_;
    const bool known = fd == control_.fd || fd == data_.fd;
    const bool readable = known ? pipe.taken < pipe.bytes.size() || pipe.ended : transfer_;
    return static_cast<short>(events & (POLLOUT | (readable ? POLLIN : 0)));
  }
  long Receive(int fd, char* buffer, std::size_t length) {
    Pipe& pipe = fd == control_.fd ? control_ : data_;
    if (pipe.taken == pipe.bytes.size() && !pipe.ended) Turn();
    const std::size_t count = pipe.bytes.copy(buffer, length, pipe.taken);
    pipe.taken += count;
    Check(count > 0 || ++idle_ < kMostIdle);
    errno = pipe.reset ? ECONNRESET : EAGAIN;
    return count > 0 || (pipe.ended && !pipe.reset) ? static_cast<long>(count) : -1;
  }
  void Send(int fd, std::string_view bytes) {
    if (fd == control_.fd) heard_ += bytes;
    for (std::size_t end = 0; (end = heard_.find('\n')) != std::string::npos;) {
      const std::string command = heard_.substr(0, end);
      heard_.erase(0, end + 1);
      Check(command.ends_with('\r'));
      commands.push_back(command.substr(0, end - 1));
      if (std::string_view("LIST MLSD RETR ").find(command.substr(0, 4)) < 11) Begin();
      Turn();
    }
  }
  /// The server goes on. Who asks again and again for what cannot change any more goes in a circle.
  void Turn() {
    while (!script_.empty())
      if (Play(Take(script_))) return;
    control_.ended = data_.ended = true;
    Check(++idle_ < kMostIdle);
  }

 private:
  static constexpr std::uint16_t kControlPort = 21;
  static constexpr int kMostIdle = 2000;
  struct Pipe {
    int fd = -1;
    std::string bytes{};
    std::size_t taken = 0;
    bool ended = false;
    bool reset = false;
  };

  [[nodiscard]] bool Said(char digit) const { return said_.find(digit) != std::string::npos; }
  // What was not read before a command may be taken for the reply to it. 450 may be a refusal.
  void NoteUnread() {
    std::string_view unread = std::string_view(control_.bytes).substr(control_.taken);
    while (!unread.empty()) {
      const std::string_view line = Take(unread);
      if (!line.empty()) said_ += line.starts_with("450") ? '5' : line[0];
    }
  }
  void Begin() {
    data_ = {};
    transfer_ = true;
    said_.clear();
    NoteUnread();
  }
  // Whether the server waits then.
  bool Play(std::string_view line) {
    const std::string rest(line.substr(line.empty() ? 0 : 1));
    const std::string data = line.starts_with('>') ? rest + "\r\n" : rest;
    switch (line.empty() ? '\0' : line[0]) {
      case '>':
      case '+':
        if (!data_.ended) data_.bytes += data;
        dataBytes += data.size();
        return false;
      case '!': data_.reset = data_.reset || !data_.ended; [[fallthrough]];
      case '.': data_.ended = true; return false;
      case '^': refuses_ = true; return false;
      case '~': return true;
      case ':': control_.bytes += rest; return false;
      case '&': control_.bytes += rest + "\r\n"; return NoteUnread(), false;
      default: control_.bytes += std::string(line) + "\r\n";
    }
    NoteUnread();
    return line.size() > 2 && line.find_first_not_of("0123456789") > 2 && line[0] != '1' &&
           (line.size() == 3 || line[3] == ' ');
  }

  std::string_view script_;
  Pipe control_;
  Pipe data_;
  std::string heard_;      // the beginning of a command
  std::string said_;       // with what replies to the last transfer may begin
  bool transfer_ = false;  // the data connection of a command may come
  bool refuses_ = false;
  int idle_ = 0;  // calls since the script ended
};

}  // namespace corvane

// In place of the system's calls.
extern "C" {

int __wrap_connect(int fd, const sockaddr* to, socklen_t /*length*/) {
  return corvane::FakeNet::now->Connect(fd,
                                        ntohs(reinterpret_cast<const sockaddr_in*>(to)->sin_port));
}
int __wrap_getsockname(int /*fd*/, sockaddr* address, socklen_t* length) {
  sockaddr_in here{AF_INET, htons(21), {htonl(INADDR_LOOPBACK)}, {}};
  std::memcpy(address, &here, *length = sizeof here);
  return 0;
}
int __wrap_getpeername(int fd, sockaddr* address, socklen_t* length) {
  return __wrap_getsockname(fd, address, length);
}
int __wrap_accept4(int fd, sockaddr* peer, socklen_t* length, int /*flags*/) {
  return __wrap_getsockname(fd, peer, length), corvane::FakeNet::now->Accept();
}
int __wrap_poll(pollfd* waits, nfds_t count, int timeout) {
  const auto look = [&] {
    for (pollfd* wait = waits; wait != waits + count; ++wait)
      wait->revents = corvane::FakeNet::now->Ready(wait->fd, wait->events);
    return static_cast<int>(
        std::count_if(waits, waits + count, [](const pollfd& wait) { return wait.revents != 0; }));
  };
  if (const int ready = look(); ready > 0 || timeout == 0) return ready;
  return corvane::FakeNet::now->Turn(), look();
}
long __wrap_recv(int fd, void* buffer, std::size_t length, int /*flags*/) {
  return corvane::FakeNet::now->Receive(fd, static_cast<char*>(buffer), length);
}
long __wrap_send(int fd, const void* bytes, std::size_t length, int /*flags*/) {
  corvane::FakeNet::now->Send(fd, {static_cast<const char*>(bytes), length});
  return static_cast<long>(length);
}
}
