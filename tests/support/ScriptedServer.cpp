#include "support/ScriptedServer.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <sstream>
#include <stdexcept>
#include <tuple>

namespace corvane {

namespace {

constexpr std::uint32_t kStranger = 0x7F000002;  // 127.0.0.2

const std::map<std::string_view, const char*> kFixedReplies = {
    {"greeting", "220 Ready.\r\n"},  {"USER", "331 Password, please.\r\n"},
    {"PASS", "230 Logged in.\r\n"},  {"SYST", "215 UNIX Type: L8\r\n"},
    {"TYPE", "200 Type set.\r\n"},   {"PASV", "227 Entering Passive Mode (127,0,0,1,{port}).\r\n"},
    {"NOOP", "200 Still here.\r\n"}, {"QUIT", "221 Bye.\r\n"}};

/// Makes the coming close of a socket a reset.
void MakeCloseReset(int fd) {
  const linger now = {1, 0};
  ::setsockopt(fd, SOL_SOCKET, SO_LINGER, &now, sizeof now);
}

}  // namespace

/// One control connection of the scripted server, on its own thread.
class ScriptedSession {
 public:
  ScriptedSession(ScriptedServer& server, UniqueFd control)
      : server_(server), control_(std::move(control)) {
    const int on = 1;
    ::setsockopt(control_.get(), IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
  }

  void Run() {
    Perform("greeting", "");
    while (control_) {
      pollfd next = {control_.get(), POLLIN, 0};
      if (!held_.empty()) ::poll(&next, 1, 2'000);
      Write(control_.get(), std::exchange(held_, {}));
      if (IsIdle()) break;
      const std::string line = ReadLine();
      if (line.empty()) return;
      server_.NoteCommand(line);
      const std::string text = line.substr(0, line.find_last_not_of("\r\n") + 1);
      const std::size_t blank = std::min(text.find(' '), text.size());
      Perform(text.substr(0, blank), blank < text.size() ? text.substr(blank + 1) : "");
    }
  }

 private:
  /// Whether the client has said nothing for too long; it has then been told.
  bool IsIdle() {
    const int limit = server_.idleLimit_;
    std::array<pollfd, 2> waits = {{{control_.get(), POLLIN, 0}, {server_.stop_.get(), POLLIN, 0}}};
    if (limit < 0 || ::poll(waits.data(), waits.size(), limit) != 0) return false;
    const MutexLock hold(server_.lock_);
    Write(control_.get(), server_.idleWords_);
    control_.reset();
    ++server_.closed_;
    return true;
  }

  void Perform(const std::string& verb, const std::string& argument) {
    action_ = server_.Next(verb);
    if (action_.arrived) action_.arrived();
    if (verb == "PASV") std::tie(passive_, passivePort_) = server_.ListenOnHost();
    action_.reply ? Say(*action_.reply) : Dispatch(verb, argument);
    if (action_.control == ControlEnd::Reset) MakeCloseReset(control_.get());
    if (action_.control != ControlEnd::Open) control_.reset();
  }

  void Say(std::string text) {
    if (const std::size_t at = text.find("{port}"); at != std::string::npos) {
      text.replace(at, 6,
                   std::to_string(passivePort_ / 256) + "," + std::to_string(passivePort_ % 256));
    }
    if (text.empty()) return;
    server_.NoteReply(text);
    if (action_.late) {
      held_ += text;
      return;
    }
    const std::size_t step = action_.byteByByte ? 1 : text.size();
    for (std::size_t at = 0; at < text.size(); at += step) {
      if (!Write(control_.get(), std::string_view(text).substr(at, step))) return;
    }
  }

  /// Says `success`, or that it cannot be done.
  void Judge(bool done, const std::string& success) {
    Say(done ? success : "550 Cannot do that.\r\n");
  }

  /// A command with its line end; "" when there is none any more.
  [[nodiscard]] std::string ReadLine() const {
    std::string line;
    for (char c = 0; c != '\n'; line += c) {
      if (!Wait(control_.get(), POLLIN) || ::recv(control_.get(), &c, 1, 0) != 1) return "";
    }
    return line;
  }

  bool Write(int fd, std::string_view bytes) const {
    while (!bytes.empty()) {
      if (!Wait(fd, POLLOUT)) return false;
      const ssize_t count = ::send(fd, bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
      if (count <= 0) return false;
      bytes.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
  }

  /// False when the server stops, the client is gone or a long time passes first.
  bool Wait(int fd, short events) const {
    std::array<pollfd, 3> waits = {
        {{fd, events, 0}, {server_.stop_.get(), POLLIN, 0}, {control_.get(), POLLRDHUP, 0}}};
    return ::poll(waits.data(), waits.size(), 20'000) > 0 && waits[1].revents == 0 &&
           waits[0].revents != 0;
  }

  void Dispatch(const std::string& verb, const std::string& argument) {
    if (const auto fixed = kFixedReplies.find(verb); fixed != kFixedReplies.end()) {
      Say(fixed->second);
      if (verb == "QUIT") control_.reset();
    } else if (verb == "PWD") {
      Say("257 \"" + directory_ + "\" is here.\r\n");
    } else if (verb == "PORT") {
      Port(argument);
    } else if (verb == "REST") {
      restart_ = std::strtoull(argument.c_str(), nullptr, 10);
      Say("350 Restarting there.\r\n");
    } else if (verb == "LIST") {
      SendData(server_.Tree().Listing(directory_));
    } else {
      AboutPath(verb, VirtualTree::Join(directory_, argument));
    }
  }

  void Port(std::string argument) {
    std::array<std::uint32_t, 6> n{};
    std::replace(argument.begin(), argument.end(), ',', ' ');
    std::istringstream numbers(argument);
    for (std::uint32_t& number : n) numbers >> number;
    passive_.reset();
    const auto port = static_cast<std::uint16_t>(n[4] << 8 | n[5]);
    active_ = {AF_INET, htons(port), {htonl(n[0] << 24 | n[1] << 16 | n[2] << 8 | n[3])}, {}};
    Say("200 Port noted.\r\n");
  }

  /// Verbs about the file or directory at `path`.
  void AboutPath(const std::string& verb, const std::string& path) {
    VirtualTree& tree = server_.Tree();
    const std::optional<std::string> bytes = tree.File(path);
    if (verb == "CWD") {
      const std::optional<std::string> directory = tree.Directory(path);
      directory_ = directory.value_or(directory_);
      Judge(directory.has_value(), "250 Changed.\r\n");
    } else if (verb == "MKD") {
      const bool fresh = !tree.Exists(path);
      if (fresh) tree.AddDirectory(path);
      Judge(fresh, "257 Made.\r\n");
    } else if (verb == "DELE") {
      Judge(tree.Remove(path, false), "250 Deleted.\r\n");
    } else if (verb == "RMD") {
      Judge(tree.Remove(path, true), "250 Removed.\r\n");
    } else if (verb == "SIZE") {
      Judge(bytes.has_value(), "213 " + std::to_string(bytes ? bytes->size() : 0) + "\r\n");
    } else if (verb == "RETR" && !bytes && !action_.data) {
      Say("550 No such file.\r\n");
    } else if (verb == "RETR") {
      SendData(bytes ? bytes->substr(std::min(restart_, bytes->size())) : "");
    } else if (verb == "STOR") {
      ReceiveData(path);
    } else {
      Say("502 Not known here.\r\n");
    }
  }

  void SendData(const std::string& bytes) {
    UniqueFd data = BeginData();
    if (!data) return;
    const std::string_view all = action_.data ? *action_.data : bytes;
    const bool whole = Write(data.get(), all.substr(0, action_.dataLimit));
    EndData(std::move(data), whole);
  }

  void ReceiveData(const std::string& path) {
    UniqueFd data = BeginData();
    if (!data) return;
    std::string bytes;
    std::array<char, 65536> block;
    ssize_t count = 1;
    while (count > 0 && bytes.size() < action_.dataLimit) {
      const std::size_t most = std::min(action_.dataLimit - bytes.size(), block.size());
      count = Wait(data.get(), POLLIN) ? ::recv(data.get(), block.data(), most, 0) : -1;
      if (count > 0) bytes.append(block.data(), static_cast<std::size_t>(count));
    }
    server_.Tree().AddFile(path, bytes);
    EndData(std::move(data), count >= 0);
  }

  /// Opens the data connection and says the preliminary reply; none when nothing more is to be
  /// done.
  [[nodiscard]] UniqueFd BeginData() {
    restart_ = 0;
    const std::string preliminary = action_.preliminary.value_or("150 Here it comes.\r\n");
    UniqueFd data;
    if (!passive_) {
      if (action_.strangerFirst) Write(Connect(kStranger).get(), "rubbish");
      data = Connect(server_.host_);
    } else if (Wait(passive_.get(), POLLIN)) {
      data.reset(::accept4(passive_.get(), nullptr, nullptr, SOCK_CLOEXEC));
      passive_.reset();
    }
    Say(data ? preliminary : "425 No data connection.\r\n");
    return data;
  }

  void EndData(UniqueFd data, bool whole) {
    if (action_.dataEnd == DataEnd::Stall) {
      Wait(data.get(), POLLRDHUP);
      whole = false;
    }
    if (action_.dataEnd == DataEnd::Reset) MakeCloseReset(data.get());
    data.reset();
    Say(action_.completion.value_or(whole ? "226 Done.\r\n" : "426 Broken off.\r\n"));
  }

  [[nodiscard]] UniqueFd Connect(std::uint32_t from) const {
    UniqueFd data(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    const sockaddr_in source{AF_INET, 0, {htonl(from)}, {}};
    (void)::bind(data.get(), reinterpret_cast<const sockaddr*>(&source), sizeof source);
    const auto* const target = reinterpret_cast<const sockaddr*>(&active_);
    return ::connect(data.get(), target, sizeof active_) == 0 ? std::move(data) : UniqueFd();
  }

  ScriptedServer& server_;
  UniqueFd control_;
  ScriptedAction action_;
  std::string held_;  // replies that are late
  std::string directory_ = "/";
  std::size_t restart_ = 0;
  UniqueFd passive_;
  std::uint16_t passivePort_ = 0;
  sockaddr_in active_{};
};

void ScriptedServer::Serve(UniqueFd control) {
  ScriptedSession(*this, std::move(control)).Run();
}

std::pair<UniqueFd, std::uint16_t> ScriptedServer::ListenOnHost() const {
  UniqueFd listener(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
  sockaddr_in address{AF_INET, 0, {htonl(host_)}, {}};
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

Site ScriptedServer::Where(bool passive) const {
  const in_addr address = {htonl(host_)};
  std::array<char, INET_ADDRSTRLEN> text{};
  const std::string host = ::inet_ntop(AF_INET, &address, text.data(), text.size());
  return {.host = host, .port = port_, .user = "u", .password = "p", .passive = passive};
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
  for (const int key : {occurrence, 0})
    if (const auto found = script_.find({verb, key}); found != script_.end()) return found->second;
  return {};
}

}  // namespace corvane
