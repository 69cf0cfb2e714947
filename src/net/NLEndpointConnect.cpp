#include <arpa/inet.h>
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <limits>
#include <utility>

#include "net/NLEndpoint.h"
#include "net/NLException.h"

namespace corvane {
namespace {

// Waits for `events`; like poll(), but interrupted by nothing. Less than 0 waits without limit.
int Poll(int descriptor, short events, long milliseconds) {
  using std::chrono::steady_clock;
  const auto deadline = steady_clock::now() + std::chrono::milliseconds(milliseconds);
  for (;;) {
    long left = -1;
    if (milliseconds >= 0) {
      const auto rest =
          std::chrono::ceil<std::chrono::milliseconds>(deadline - steady_clock::now());
      left = std::clamp<long>(rest.count(), 0, std::numeric_limits<int>::max());
    }
    pollfd wait{descriptor, events, 0};
    const int ready = ::poll(&wait, 1, static_cast<int>(left));
    if (ready < 0 && errno == EINTR) continue;
    if (ready > 0 && (wait.revents & POLLNVAL) != 0) {
      errno = EBADF;
      return -1;
    }
    return ready;
  }
}

}  // namespace

NLAddress NLEndpoint::resolve(const char* host, std::uint16_t port) {
  in_addr quad{};
  if (host == nullptr || ::inet_aton(host, &quad) != 0) return NLAddress(host, port);
  const auto lookup = std::make_shared<NLLookup>(host, port);
  {
    const MutexLock lock(lock_);
    if (aborted_) throw NLException("NLEndpoint::connect()", "Connection aborted", this);
    lookup_ = lookup;
  }
  return lookup->get();
}

void NLEndpoint::bind(int port) {
  bind(NLAddress(NLAddress::any, port));
}

void NLEndpoint::bind(const NLAddress& address) {
  constexpr char kFunction[] = "NLEndpoint::bind()";
  if (state() != s_open) p_resetSocket();
  const Socket socket = use(kFunction);
  sockaddr_in wanted{};
  address.get(wanted);
  if (::bind(socket->get(), reinterpret_cast<const sockaddr*>(&wanted), sizeof wanted) != 0) {
    const int error = errno;
    close();
    fail(kFunction, "::bind()", error);
  }
  sockaddr_in bound = socketName(socket, kFunction);
  if (bound.sin_addr.s_addr == 0) {
    char machine[64] = "";
    try {
      if (::gethostname(machine, sizeof machine - 1) == 0) {
        resolve(machine, 0).get(bound.sin_addr, nullptr);
      }
    } catch (const NLException&) {
      // A machine whose own name does not resolve keeps the empty address.
    }
  }
  localAddress_.set(bound);
  addState(socket, s_bound, kFunction, "::bind()");
}

sockaddr_in NLEndpoint::socketName(const Socket& socket, const char* function) {
  sockaddr_in name{};
  socklen_t length = sizeof name;
  if (::getsockname(socket->get(), reinterpret_cast<sockaddr*>(&name), &length) != 0) {
    const int error = errno;
    close();
    fail(function, "::getsockname()", error);
  }
  return name;
}

void NLEndpoint::connect(const char* host, int port) {
  connect(resolve(host, static_cast<std::uint16_t>(port)));
}

void NLEndpoint::connect(const NLAddress& address) {
  (void)connectSocket(address, {});
}

bool NLEndpoint::connectWhile(const NLAddress& address, const std::function<bool()>& goOn) {
  return connectSocket(address, goOn);
}

bool NLEndpoint::connectSocket(const NLAddress& address, const std::function<bool()>& goOn) {
  constexpr char kFunction[] = "NLEndpoint::connect()";
  if ((state() & s_open) == 0) p_resetSocket();
  const Socket socket = use(kFunction);
  const int failure = startConnecting(socket, address, goOn);
  if (failure == EINTR) {
    close();
    return false;
  }
  if (failure != 0) {
    close();
    lastError = failure;
    fail(kFunction, "::connect()", failure);
  }
  sockaddr_in peer{};
  socklen_t length = sizeof peer;
  if (::getpeername(socket->get(), reinterpret_cast<sockaddr*>(&peer), &length) != 0) {
    const int error = errno;
    close();
    fail(kFunction, "::getpeername()", error);
  }
  remoteAddress_.set(peer);
  localAddress_.set(socketName(socket, kFunction));
  addState(socket, s_connected, kFunction, "::connect()");
  return true;
}

// A blocking connect is done as a non-blocking one that is waited for: a shutdown that comes before
// the call is noticed by the look at the socket after it, a later one ends the wait.
int NLEndpoint::startConnecting(const Socket& socket, const NLAddress& address,
                                const std::function<bool()>& goOn) {
  sockaddr_in target{};
  address.get(target);
  const int descriptor = socket->get();
  const int flags = ::fcntl(descriptor, F_GETFL);
  if (flags < 0) return errno;
  const bool wait = (flags & O_NONBLOCK) == 0;
  if (wait) ::fcntl(descriptor, F_SETFL, flags | O_NONBLOCK);
  int error = 0;
  if (::connect(descriptor, reinterpret_cast<const sockaddr*>(&target), sizeof target) != 0) {
    error = errno;
  }
  if (wait && (error == EINPROGRESS || error == EINTR)) error = awaitConnected(socket, goOn);
  if (wait) ::fcntl(descriptor, F_SETFL, flags);
  return isCurrent(socket) ? error : ECONNABORTED;
}

int NLEndpoint::awaitConnected(const Socket& socket, const std::function<bool()>& goOn) const {
  using std::chrono::steady_clock;
  constexpr long kSlice = 50;
  const auto begin = steady_clock::now();
  const auto limit = std::chrono::milliseconds(silenceLimit_);
  int ready = 0;
  while (ready == 0 && isCurrent(socket)) {
    ready = Poll(socket->get(), POLLOUT, goOn || silenceLimit_ > 0 ? kSlice : -1);
    if (ready < 0) return errno;
    if (ready > 0) break;
    if (goOn && !goOn()) return EINTR;
    if (silenceLimit_ > 0 && steady_clock::now() - begin > limit) return ETIMEDOUT;
  }
  int error = 0;
  socklen_t length = sizeof error;
  if (ready > 0) ::getsockopt(socket->get(), SOL_SOCKET, SO_ERROR, &error, &length);
  return error;
}

void NLEndpoint::listen(int backlog) {
  constexpr char kFunction[] = "NLEndpoint::listen()";
  const Socket socket = use(kFunction);
  if (::listen(socket->get(), backlog) != 0) {
    const int error = errno;
    close();
    fail(kFunction, "::listen()", error);
  }
}

std::unique_ptr<NLEndpoint> NLEndpoint::accept(long timeout) {
  constexpr char kFunction[] = "NLEndpoint::accept()";
  if (!isDataPending(timeout)) return nullptr;
  const Socket socket = use(kFunction);
  sockaddr_in peer{};
  socklen_t length = sizeof peer;
  UniqueFd accepted;
  do {
    accepted.reset(
        ::accept4(socket->get(), reinterpret_cast<sockaddr*>(&peer), &length, SOCK_CLOEXEC));
  } while (!accepted && errno == EINTR);
  if (!accepted) {
    const int error = isCurrent(socket) ? errno : ECONNABORTED;
    close();
    fail(kFunction, "::accept()", error);
  }
  std::unique_ptr<NLEndpoint> connection = clone(*this);
  if (!connection) throw NLException("NLEndpoint::accept", "Out of memory", this);
  const auto own = std::make_shared<const UniqueFd>(std::move(accepted));
  connection->applySilenceLimit(own->get());
  connection->remoteAddress_.set(peer);
  {
    const MutexLock lock(connection->lock_);
    connection->socket_ = own;
    connection->state_ = s_open | s_connected;
  }
  sockaddr_in local{};
  length = sizeof local;
  if (::getsockname(own->get(), reinterpret_cast<sockaddr*>(&local), &length) != 0) {
    fail(kFunction, "::getsockname()", errno);
  }
  connection->localAddress_.set(local);
  return connection;
}

bool NLEndpoint::isDataPending(long milliseconds) {
  constexpr char kFunction[] = "NLEndpoint::isDataPending()";
  const Socket socket = use(kFunction);
  if (!*socket) fail(kFunction, "::select", EBADF);
  const int ready = Poll(socket->get(), POLLIN, milliseconds > 0 ? milliseconds : -1);
  if (ready < 0) fail(kFunction, "::select", errno);
  if (!isCurrent(socket)) fail(kFunction, "::select", ECONNABORTED);
  return ready > 0;
}

bool NLEndpoint::wait(long milliseconds) {
  if (milliseconds > 0) return isDataPending(milliseconds);
  constexpr char kFunction[] = "NLEndpoint::wait()";
  const Socket socket = use(kFunction);
  if (!*socket) fail(kFunction, "::poll()", EBADF);
  return Poll(socket->get(), POLLIN, 0) > 0;
}

}  // namespace corvane
