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

#include "util/Digest.h"

namespace corvane {

namespace {

const NLAddress kStranger("127.0.0.2", 0);

const std::map<std::string_view, const char*> kFixedReplies = {
    {"greeting", "220 Ready.\r\n"},
    {"USER", "331 Password, please.\r\n"},
    {"PASS", "230 Logged in.\r\n"},
    {"SYST", "215 UNIX Type: L8\r\n"},
    {"TYPE", "200 Type set.\r\n"},
    {"PASV", "227 Entering Passive Mode (127,0,0,1,{port}).\r\n"},
    {"EPSV", "229 Entering Extended Passive Mode (|||{epsv}|).\r\n"},
    {"NOOP", "200 Still here.\r\n"},
    {"QUIT", "221 Bye.\r\n"},
    {"PBSZ", "200 As you like.\r\n"},
    {"PROT", "200 As you like.\r\n"}};

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
    if (server_.encryptsAtOnce_) {
      controlTls_ = Shake(control_.get());
      if (!controlTls_) return;
    }
    Perform("greeting", "");
    while (control_) {
      pollfd next = {control_.get(), POLLIN, 0};
      if (!held_.empty() && ahead_.empty()) ::poll(&next, 1, 2'000);
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
    if (verb == "PASV" || verb == "EPSV") std::tie(passive_, passivePort_) = server_.ListenOnHost();
    if (!action_.endless.empty()) {
      SayForever();
    } else {
      action_.reply ? Say(*action_.reply) : Dispatch(verb, argument);
    }
    if (action_.control == ControlEnd::Reset) MakeCloseReset(control_.get());
    if (action_.control != ControlEnd::Open) control_.reset();
  }

  void Say(std::string text) {
    if (const std::size_t at = text.find("{port}"); at != std::string::npos) {
      text.replace(at, 6,
                   std::to_string(passivePort_ / 256) + "," + std::to_string(passivePort_ % 256));
    }
    if (const std::size_t at = text.find("{epsv}"); at != std::string::npos)
      text.replace(at, 6, std::to_string(passivePort_));
    if (text.empty()) return;
    text = std::exchange(action_.before, {}) + text + std::exchange(action_.after, {});
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

  void SayForever() {
    constexpr std::size_t kMost = 2U << 20;
    server_.NoteReply(action_.endless + "...\n");
    std::string block;
    while (block.size() < 65536) block += action_.endless;
    for (std::size_t said = 0; said < kMost && Write(control_.get(), block);) said += block.size();
  }

  /// Says `success`, or that it cannot be done.
  void Judge(bool done, const std::string& success) {
    Say(done ? success : "550 Cannot do that.\r\n");
  }

  /// A command with its line end; "" when there is none any more.
  [[nodiscard]] std::string ReadLine() {
    while (ahead_.find('\n') == std::string::npos) {
      const std::string more = Receive(control_.get(), controlTls_.get(), 4096);
      if (more.empty()) return "";
      ahead_ += more;
    }
    const std::string line = ahead_.substr(0, ahead_.find('\n') + 1);
    ahead_.erase(0, line.size());
    return line;
  }

  /// What comes next, at most so many bytes of it; "" at the end.
  [[nodiscard]] std::string Receive(int fd, TlsEnd* tls, std::size_t most) {
    broken_ = false;
    // It may have come together with the end of the handshake.
    std::string plain = tls != nullptr ? tls->Open() : std::string();
    while (plain.empty()) {
      std::string bytes(most, '\0');
      const ssize_t count = Wait(fd, POLLIN) ? ::recv(fd, bytes.data(), most, 0) : -1;
      broken_ = count < 0;
      bytes.resize(static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
      if (tls == nullptr || bytes.empty()) return bytes;
      tls->Feed(bytes);
      plain = tls->Open();
    }
    return plain;
  }

  /// The server's end of a handshake; null where it does not come about.
  [[nodiscard]] std::unique_ptr<TlsEnd> Shake(int fd) const {
    auto tls = std::make_unique<TlsEnd>(*server_.Tls());
    std::size_t left = action_.handshakeLimit;
    std::array<char, 4096> block{};
    for (bool done = false; !done;) {
      if (!Wait(fd, POLLIN)) return nullptr;
      const ssize_t count = ::recv(fd, block.data(), block.size(), 0);
      if (count <= 0) return nullptr;
      tls->Feed({block.data(), static_cast<std::size_t>(count)});
      done = tls->Shake();
      const std::string out = tls->Wire().substr(0, left);
      left -= std::min(left, out.size());
      const bool written = WriteRaw(fd, out);
      if (left == 0 && action_.dataEnd == DataEnd::Stall) Wait(fd, POLLRDHUP);
      if (!written || left == 0) return nullptr;
    }
    return tls;
  }

  void Auth() {
    if (!server_.Tls()) return Say("502 Not known here.\r\n");
    Say("234 Go on.\r\n");
    controlTls_ = Shake(control_.get());
    if (!controlTls_) control_.reset();
  }

  bool Write(int fd, std::string_view bytes) const {
    TlsEnd* const tls = fd == control_.get() ? controlTls_.get() : dataTls_.get();
    if (tls == nullptr) return WriteRaw(fd, bytes);
    tls->Seal(bytes);
    return WriteRaw(fd, tls->Wire());
  }

  bool WriteRaw(int fd, std::string_view bytes) const {
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
    } else if (verb == "AUTH") {
      Auth();
    } else if (verb == "PORT") {
      Port(argument);
    } else if (verb == "EPRT") {
      ExtendedPort(argument);
    } else if (verb == "REST") {
      restart_ = std::strtoull(argument.c_str(), nullptr, 10);
      Say("350 Restarting there.\r\n");
    } else if (verb == "LIST" || (verb == "MLSD" && action_.data)) {
      SendData(server_.Tree().Listing(directory_));
    } else if (verb == "FEAT") {
      Features();
    } else if (!AboutPath(verb, VirtualTree::Join(directory_, argument)) &&
               !AboutFacts(verb, argument)) {
      Say("502 Not known here.\r\n");
    }
  }

  void Features() {
    std::istringstream lines(server_.Features());
    std::string reply = "211-These:\r\n";
    for (std::string line; std::getline(lines, line, '|');) reply += " " + line + "\r\n";
    Say(server_.Features().empty() ? "502 Not known here.\r\n" : reply + "211 No more.\r\n");
  }

  void Port(std::string argument) {
    std::array<std::uint32_t, 6> n{};
    std::replace(argument.begin(), argument.end(), ',', ' ');
    std::istringstream numbers(argument);
    for (std::uint32_t& number : n) numbers >> number;
    passive_.reset();
    const auto port = static_cast<std::uint16_t>(n[4] << 8 | n[5]);
    active_.set(in_addr{htonl(n[0] << 24 | n[1] << 16 | n[2] << 8 | n[3])}, port);
    Say("200 Port noted.\r\n");
  }

  /// "|2|::1|5282|"
  void ExtendedPort(std::string argument) {
    std::replace(argument.begin(), argument.end(), '|', ' ');
    std::istringstream words(argument);
    std::string family;
    std::string host;
    std::uint16_t port = 0;
    words >> family >> host >> port;
    passive_.reset();
    active_.set(host.c_str(), port);
    Say("200 Port noted.\r\n");
  }

  /// Verbs about the file or directory at `path`; false for another.
  bool AboutPath(const std::string& verb, const std::string& path) {
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
    } else if (verb == "RNFR") {
      renamed_ = path;
      Judge(tree.Exists(path), "350 And?\r\n");
    } else if (verb == "RNTO") {
      Judge(tree.Move(renamed_, path), "250 Renamed.\r\n");
    } else if (verb == "SIZE") {
      Judge(bytes.has_value(), "213 " + std::to_string(bytes ? bytes->size() : 0) + "\r\n");
    } else if (verb == "RETR" && !bytes && !action_.data) {
      Say("550 No such file.\r\n");
    } else if (verb == "RETR") {
      SendData(bytes ? bytes->substr(std::min(restart_, bytes->size())) : "");
    } else if (verb == "STOR" || verb == "APPE") {
      ReceiveData(path,
                  bytes.value_or("").substr(0, verb == "APPE" ? std::string::npos : restart_));
    } else {
      return false;
    }
    return true;
  }

  /// Verbs that are dealt with where they are offered; false for another.
  bool AboutFacts(const std::string& verb, const std::string& argument) {
    const std::string listed = verb == "MLSD" ? "MLST" : verb;
    if (server_.Features().find(listed) == std::string::npos) return false;
    VirtualTree& tree = server_.Tree();
    std::string name = verb == "MFMT" ? argument.substr(15) : argument;
    std::erase(name, '"');
    const std::string path = VirtualTree::Join(directory_, name);
    const std::optional<std::string> bytes = tree.File(path);
    if (verb == "MLSD") {
      SendData(tree.Facts(directory_));
    } else if (verb == "MLST") {
      Judge(tree.Exists(path), "250-Here:\r\n " + tree.Fact(path, path) + "250 That is it.\r\n");
    } else if (verb == "MDTM") {
      Judge(bytes.has_value(), "213 20260112123400\r\n");
    } else if (verb == "MFMT") {
      Judge(bytes.has_value(), "213 Modify=20260112123400; it\r\n");
    } else {
      Judge(bytes.has_value(), "250 " + Sha256(bytes.value_or("")) + "\r\n");
    }
    return true;
  }

  static std::string Sha256(const std::string& bytes) {
    Digest digest(DigestKind::Sha256);
    digest.Add(bytes);
    std::string hex;
    for (const char c : digest.Take()) {
      hex += "0123456789abcdef"[static_cast<unsigned char>(c) >> 4];
      hex += "0123456789abcdef"[static_cast<unsigned char>(c) & 15];
    }
    return hex;
  }

  void SendData(const std::string& bytes) {
    UniqueFd data = BeginData();
    if (!data) return;
    const std::string_view all = action_.data ? *action_.data : bytes;
    const bool whole = Write(data.get(), all.substr(0, action_.dataLimit));
    EndData(std::move(data), whole);
  }

  void ReceiveData(const std::string& path, std::string bytes) {
    UniqueFd data = BeginData();
    if (!data) return;
    std::string more = "begin";
    while (!more.empty() && bytes.size() < action_.dataLimit) {
      const std::size_t most = std::min<std::size_t>(action_.dataLimit - bytes.size(), 65536);
      more = Receive(data.get(), dataTls_.get(), most);
      bytes += more;
    }
    server_.Tree().AddFile(path, bytes);
    EndData(std::move(data), !broken_);
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
    dataTls_ = data && controlTls_ ? Shake(data.get()) : nullptr;
    if (data && controlTls_ && !dataTls_) {
      data.reset();
      if (action_.handshakeLimit == std::string::npos) Say("425 Not encrypted.\r\n");
    }
    return data;
  }

  void EndData(UniqueFd data, bool whole) {
    if (action_.endsFirst) {
      Say(*std::exchange(action_.completion, ""));
      if (action_.control != ControlEnd::Open) ::shutdown(control_.get(), SHUT_RDWR);
      std::this_thread::sleep_for(std::chrono::milliseconds(400));
    }
    if (action_.dataEnd == DataEnd::Stall) {
      Wait(data.get(), POLLRDHUP);
      whole = false;
    }
    if (dataTls_ && action_.saysEnd) {
      dataTls_->SayEnd();
      WriteRaw(data.get(), dataTls_->Wire());
    }
    dataTls_.reset();
    if (action_.dataEnd == DataEnd::Reset) MakeCloseReset(data.get());
    data.reset();
    Say(action_.completion.value_or(whole ? "226 Done.\r\n" : "426 Broken off.\r\n"));
  }

  [[nodiscard]] UniqueFd Connect(const NLAddress& from) const {
    UniqueFd data(::socket(from.family(), SOCK_STREAM | SOCK_CLOEXEC, 0));
    sockaddr_storage source{};
    sockaddr_storage target{};
    from.get(source);
    active_.get(target);
    (void)::bind(data.get(), reinterpret_cast<const sockaddr*>(&source), from.length());
    const auto* const plain = reinterpret_cast<const sockaddr*>(&target);
    return ::connect(data.get(), plain, active_.length()) == 0 ? std::move(data) : UniqueFd();
  }

  ScriptedServer& server_;
  UniqueFd control_;
  ScriptedAction action_;
  std::unique_ptr<TlsEnd> controlTls_;
  std::unique_ptr<TlsEnd> dataTls_;
  bool broken_ = false;  // the last receive failed
  std::string ahead_;    // received, and no whole line yet
  std::string held_;     // replies that are late
  std::string directory_ = "/";
  std::string renamed_;  // what RNFR has named
  std::size_t restart_ = 0;
  UniqueFd passive_;
  std::uint16_t passivePort_ = 0;
  NLAddress active_;
};

void ScriptedServer::Serve(UniqueFd control) {
  ScriptedSession(*this, std::move(control)).Run();
}

std::pair<UniqueFd, std::uint16_t> ScriptedServer::ListenOnHost() const {
  UniqueFd listener(::socket(host_.family(), SOCK_STREAM | SOCK_CLOEXEC, 0));
  sockaddr_storage address{};
  host_.get(address);
  socklen_t length = host_.length();
  auto* const plain = reinterpret_cast<sockaddr*>(&address);
  if (::bind(listener.get(), plain, length) != 0 || ::listen(listener.get(), 16) != 0 ||
      ::getsockname(listener.get(), plain, &length) != 0) {
    throw std::runtime_error("cannot listen on the loopback interface");
  }
  return {std::move(listener), NLAddress(address).port()};
}

ScriptedServer::ScriptedServer(const NLAddress& host)
    : host_(host), stop_(::eventfd(0, EFD_CLOEXEC)) {
  std::tie(listener_, port_) = ListenOnHost();
  thread_ = std::thread([this] { Listen(); });
}

ScriptedServer::~ScriptedServer() {
  ::eventfd_write(stop_.get(), 1);
  thread_.join();
}

Site ScriptedServer::Where(bool passive) const {
  return {.host = host_.text(),
          .port = port_,
          .user = "u",
          .password = "p",
          .passive = passive,
          .security = Security::Plain};
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

void ScriptedServer::OnNext(const std::string& verb, ScriptedAction action) {
  const MutexLock hold(lock_);
  script_.insert_or_assign({verb, seen_[verb] + 1}, std::move(action));
}

ScriptedAction ScriptedServer::Next(const std::string& verb) {
  const MutexLock hold(lock_);
  const int occurrence = ++seen_[verb];
  for (const int key : {occurrence, 0})
    if (const auto found = script_.find({verb, key}); found != script_.end()) return found->second;
  return {};
}

}  // namespace corvane
