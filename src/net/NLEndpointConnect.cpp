#include <arpa/inet.h>
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <limits>
#include <utility>

#include "net/ConnectRace.h"
#include "net/NLEndpoint.h"
#include "net/NLException.h"

namespace corvane {
namespace {

constexpr char kConnect[] = "NLEndpoint::connect()";

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

std::vector<NLAddress> NLEndpoint::resolve(const char* host, std::uint16_t port) {
  in_addr quad{};
  if (host == nullptr || ::inet_aton(host, &quad) != 0) return {NLAddress(host, port)};
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
  openFor(address);
  const Socket socket = use(kFunction);
  sockaddr_storage wanted{};
  address.get(wanted);
  const auto* plain = reinterpret_cast<const sockaddr*>(&wanted);
  if (::bind(socket->get(), plain, address.length()) != 0) {
    const int error = errno;
    close();
    fail(kFunction, "::bind()", error);
  }
  const NLAddress bound = socketName(socket, kFunction);
  localAddress_ = bound.isAny() ? ownAddress(bound) : bound;
  addState(socket, s_bound, kFunction, "::bind()");
}

// A machine whose own name does not resolve keeps the empty address.
NLAddress NLEndpoint::ownAddress(const NLAddress& bound) {
  char machine[64] = "";
  if (::gethostname(machine, sizeof machine - 1) != 0) return bound;
  try {
    for (const NLAddress& own : resolve(machine, bound.port()))
      if (own.family() == bound.family()) return own;
  } catch (const NLException&) {
    return bound;
  }
  return bound;
}

NLAddress NLEndpoint::socketName(const Socket& socket, const char* function) {
  sockaddr_storage name{};
  socklen_t length = sizeof name;
  if (::getsockname(socket->get(), reinterpret_cast<sockaddr*>(&name), &length) != 0) {
    const int error = errno;
    close();
    fail(function, "::getsockname()", error);
  }
  return NLAddress(name);
}

void NLEndpoint::connect(const char* host, int port) {
  const std::vector<NLAddress> addresses = resolve(host, static_cast<std::uint16_t>(port));
  if (addresses.size() == 1) return connect(addresses.front());
  constexpr long kMostPatience = 20'000;
  const long limit = silenceLimit_ > 0 ? std::min(silenceLimit_, kMostPatience) : kMostPatience;
  (void)connectFirst(addresses, limit, {});
}

void NLEndpoint::connect(const NLAddress& address) {
  openFor(address);
  const Socket socket = use(kConnect);
  const int failure = startConnecting(socket, address);
  if (failure != 0) {
    close();
    lastError = failure;
    fail(kConnect, "::connect()", failure);
  }
  noteConnected(socket);
}

void NLEndpoint::noteConnected(const Socket& socket) {
  sockaddr_storage peer{};
  socklen_t length = sizeof peer;
  if (::getpeername(socket->get(), reinterpret_cast<sockaddr*>(&peer), &length) != 0) {
    // A peer that was there and has hung up already has no name any more.
    lastError = errno == ENOTCONN ? ECONNRESET : errno;
    close();
    fail(kConnect, "::getpeername()", lastError);
  }
  remoteAddress_.set(peer);
  localAddress_ = socketName(socket, kConnect);
  addState(socket, s_connected, kConnect, "::connect()");
}

// The race has sockets of its own; closing the endpoint meanwhile closes `before`, which ends it.
bool NLEndpoint::connectFirst(std::span<const NLAddress> addresses, long limit,
                              const std::function<bool()>& goOn) {
  using std::chrono::milliseconds;
  constexpr milliseconds kSlice(50);
  if ((state() & s_open) == 0) p_resetSocket();
  const Socket before = use(kConnect);
  ConnectRace race(addresses, protocol_, milliseconds(limit));
  while (!race.step(kSlice)) {
    if (!isCurrent(before)) fail(kConnect, "::connect()", ECONNABORTED);
    if (!goOn || goOn()) continue;
    close();
    return false;
  }
  UniqueFd connected = race.takeWinner();
  if (!connected) {
    close();
    lastError = race.error();
    fail(kConnect, "::connect()", lastError);
  }
  adopt(before, std::move(connected));
  return true;
}

void NLEndpoint::adopt(const Socket& before, UniqueFd connected) {
  const auto own = std::make_shared<const UniqueFd>(std::move(connected));
  ::fcntl(own->get(), F_SETFL, ::fcntl(own->get(), F_GETFL) & ~O_NONBLOCK);
  applySilenceLimit(own->get());
  {
    const MutexLock lock(lock_);
    if (socket_ == before) {
      socket_ = own;
      state_ = s_open;
    }
  }
  if (!isCurrent(own)) fail(kConnect, "::connect()", ECONNABORTED);
  noteConnected(own);
  family_ = remoteAddress_.family();
}

// A blocking connect is done as a non-blocking one that is waited for: a shutdown that comes before
// the call is noticed by the look at the socket after it, a later one ends the wait.
int NLEndpoint::startConnecting(const Socket& socket, const NLAddress& address) {
  sockaddr_storage target{};
  address.get(target);
  const int descriptor = socket->get();
  const int flags = ::fcntl(descriptor, F_GETFL);
  if (flags < 0) return errno;
  const bool wait = (flags & O_NONBLOCK) == 0;
  if (wait) ::fcntl(descriptor, F_SETFL, flags | O_NONBLOCK);
  int error = 0;
  if (::connect(descriptor, reinterpret_cast<const sockaddr*>(&target), address.length()) != 0) {
    error = errno;
  }
  if (wait && (error == EINPROGRESS || error == EINTR)) error = awaitConnected(socket);
  if (wait) ::fcntl(descriptor, F_SETFL, flags);
  return isCurrent(socket) ? error : ECONNABORTED;
}

int NLEndpoint::awaitConnected(const Socket& socket) const {
  if (!isCurrent(socket)) return ECONNABORTED;
  const int ready = Poll(socket->get(), POLLOUT, silenceLimit_ > 0 ? silenceLimit_ : -1);
  if (ready < 0) return errno;
  int error = ETIMEDOUT;
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
  sockaddr_storage peer{};
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
  sockaddr_storage local{};
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
