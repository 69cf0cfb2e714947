#include "app/desktop/RunningProgram.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <thread>

#include "app/desktop/RequestServer.h"
#include "app/desktop/StartupNotice.h"
#include "app/shared/CommandLine.h"

namespace corvane {
namespace {

using Clock = std::chrono::steady_clock;

constexpr const char* kFolder = "corvane";
constexpr const char* kSocket = "requests";

/// The directory, if it is the user's own, and, with `only`, nobody else can enter it.
UniqueFd OpenOwn(int base, const char* path, bool only) {
  UniqueFd folder(
      ::openat(base, path, O_RDONLY | O_DIRECTORY | O_CLOEXEC | (only ? O_NOFOLLOW : 0)));
  struct stat status {};
  if (!folder || ::fstat(folder.get(), &status) != 0 || status.st_uid != ::geteuid()) return {};
  if (only && (status.st_mode & 077) != 0) return {};
  return folder;
}

UniqueFd FolderIn(const std::filesystem::path& base) {
  if (!base.is_absolute()) return {};
  const UniqueFd own = OpenOwn(AT_FDCWD, base.c_str(), false);
  if (!own) return {};
  ::mkdirat(own.get(), kFolder, 0700);
  return OpenOwn(own.get(), kFolder, true);
}

std::filesystem::path Named(const char* variable) {
  const char* const value = std::getenv(variable);
  return value != nullptr ? value : "";
}

std::filesystem::path CacheDirectory() {
  std::filesystem::path cache = Named("XDG_CACHE_HOME");
  if (!cache.is_absolute()) cache = Named("HOME") / ".cache";
  if (cache.is_absolute()) ::mkdir(cache.c_str(), 0700);
  return cache;
}

/// Goes through the open folder, so that no path is too long for an address.
sockaddr_un Address(const UniqueFd& folder) {
  const std::string path = "/proc/self/fd/" + std::to_string(folder.get()) + "/" + kSocket;
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  path.copy(address.sun_path, sizeof address.sun_path - 1);
  return address;
}

UniqueFd LocalSocket() {
  return UniqueFd(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
}

/// What the running program says; "" when it cannot be reached, hangs up or lets `until` pass.
std::string Ask(const UniqueFd& folder, const std::string& line, Clock::time_point until) {
  const UniqueFd peer = LocalSocket();
  const sockaddr_un address = Address(folder);
  if (::connect(peer.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
      ::send(peer.get(), line.data(), line.size(), MSG_NOSIGNAL) != std::ssize(line)) {
    return {};
  }
  std::string answer;
  while (!answer.ends_with('\n')) {
    using std::chrono::milliseconds;
    const auto left = std::chrono::duration_cast<milliseconds>(until - Clock::now()).count();
    pollfd wait{.fd = peer.get(), .events = POLLIN, .revents = 0};
    char byte = 0;
    if (left <= 0 || ::poll(&wait, 1, static_cast<int>(left)) <= 0) return {};
    if (::recv(peer.get(), &byte, 1, 0) != 1) return {};
    answer += byte;
  }
  return answer;
}

}  // namespace

RunningProgram::RunningProgram() : folder_(FolderIn(Named("XDG_RUNTIME_DIR"))) {
  if (!folder_) folder_ = FolderIn(CacheDirectory());
}

RunningProgram::Start RunningProgram::Begin(const std::vector<std::string>& arguments,
                                            std::chrono::milliseconds patience) {
  const bool open = CommandLine::Read(arguments).open.has_value();
  const std::string request = open ? "open " + arguments.front() : "show";
  const Start start = Settle(RequestServer::Named(StartupNotice::Id(), request), patience);
  if (start == Start::First && folder_) Listen();
  return start;
}

RunningProgram::Start RunningProgram::Offer(const std::string& request,
                                            std::chrono::milliseconds patience) const {
  const Start start = Settle(request, patience);
  if (start == Start::First && folder_) ::flock(folder_.get(), LOCK_UN);
  return start;
}

bool RunningProgram::TakeLock(const char* name) {
  if (!folder_) return true;
  lock_.reset(::openat(folder_.get(), name, O_RDONLY | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600));
  return ::flock(lock_.get(), LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK;
}

RunningProgram::Start RunningProgram::Settle(const std::string& request,
                                             std::chrono::milliseconds patience) const {
  if (!folder_) return Start::First;
  const auto until = Clock::now() + patience;
  do {
    if (::flock(folder_.get(), LOCK_EX | LOCK_NB) == 0) return Start::First;
    if (errno != EWOULDBLOCK) return Start::First;  // a file system without locks
    if (!RequestServer::Read(request).has_value()) return Start::Refused;
    const std::string answer = Ask(folder_, request + "\n", until);
    if (answer == RequestServer::kTaken) return Start::HandedOver;
    if (answer == RequestServer::kRefused) return Start::Refused;
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
  } while (Clock::now() < until);
  return Start::NoAnswer;
}

void RunningProgram::Listen() {
  UniqueFd listener = LocalSocket();
  const sockaddr_un address = Address(folder_);
  ::unlinkat(folder_.get(), kSocket, 0);  // a killed program's
  if (::bind(listener.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
      ::fchmodat(folder_.get(), kSocket, 0600, 0) != 0 || ::listen(listener.get(), 16) != 0) {
    return;
  }
  listener_ = std::move(listener);
}

void RunningProgram::End() {
  if (listener_) ::unlinkat(folder_.get(), kSocket, 0);
  listener_.reset();
  folder_.reset();
}

}  // namespace corvane
