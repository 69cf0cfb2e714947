#include "net/NLEndpoint.h"

#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/time.h>

#include <algorithm>
#include <cerrno>
#include <string>
#include <utility>

#include "net/NLException.h"
#include "util/ErrorText.h"

namespace corvane {

NLEndpoint::NLEndpoint(e_type type) : protocol_(type) {
  NLEndpoint::p_resetSocket();
}

NLEndpoint::NLEndpoint(const NLEndpoint& source)
    : throwOnSendError(source.throwOnSendError),
      throwOnReceiveError(source.throwOnReceiveError),
      lastError(source.lastError),
      receiveTimeout(source.receiveTimeout),
      localAddress_(source.localAddress_),
      remoteAddress_(source.remoteAddress_),
      protocol_(source.protocol_),
      family_(source.family_),
      silenceLimit_(source.silenceLimit_) {}

NLEndpoint::~NLEndpoint() {
  NLEndpoint::close();
}

std::unique_ptr<NLEndpoint> NLEndpoint::clone(const NLEndpoint& source) const {
  return std::unique_ptr<NLEndpoint>(new NLEndpoint(source));
}

void NLEndpoint::close() {
  Socket last;  // let go of when the lock is free again
  const MutexLock lock(lock_);
  state_ = s_inval;
  if (lookup_) lookup_->cancel();
  if (socket_.use_count() > 1) ::shutdown(socket_->get(), SHUT_RDWR);
  last = std::exchange(socket_, nullptr);
}

void NLEndpoint::abort() {
  {
    const MutexLock lock(lock_);
    aborted_ = true;
  }
  close();
}

void NLEndpoint::p_resetSocket() {
  constexpr char kFunction[] = "NLEndpoint::p_resetSocket()";
  close();
  const auto fresh = std::make_shared<const UniqueFd>(
      ::socket(family_, static_cast<int>(protocol_) | SOCK_CLOEXEC, 0));
  if (!*fresh) fail(kFunction, "::socket()", errno);
  applySilenceLimit(fresh->get());
  const MutexLock lock(lock_);
  if (aborted_) throw NLException(kFunction, "Connection aborted", this);
  socket_ = fresh;
  state_ |= s_open;
}

// What was set on a socket that is merely of the other family is set on the new one.
void NLEndpoint::openFor(const NLAddress& address) {
  const bool open = (state() & s_open) != 0;
  if (open && family_ == address.family()) return;
  const Socket before = use("NLEndpoint::p_resetSocket()");
  int reuse = 0;
  socklen_t length = sizeof reuse;
  ::getsockopt(before->get(), SOL_SOCKET, SO_REUSEADDR, &reuse, &length);
  const int flags = ::fcntl(before->get(), F_GETFL);
  family_ = address.family();
  p_resetSocket();
  if (!open) return;
  setReuseAddr(reuse != 0);
  setNonBlock((flags & O_NONBLOCK) != 0);
}

void NLEndpoint::setProtocol(e_type type) {
  protocol_ = type;
  p_resetSocket();
}

std::uint32_t NLEndpoint::state() const {
  const MutexLock lock(lock_);
  return state_;
}

NLEndpoint::Socket NLEndpoint::use(const char* function) {
  const MutexLock lock(lock_);
  if (aborted_) throw NLException(function, "Connection aborted", this);
  return socket_ ? socket_ : std::make_shared<const UniqueFd>();
}

bool NLEndpoint::isCurrent(const Socket& socket) const {
  const MutexLock lock(lock_);
  return socket_ == socket;
}

void NLEndpoint::addState(const Socket& socket, std::uint32_t bits, const char* function,
                          const char* call) {
  {
    const MutexLock lock(lock_);
    if (socket_ == socket) {
      state_ |= bits;
      return;
    }
  }
  fail(function, call, ECONNABORTED);
}

void NLEndpoint::fail(const char* function, const char* call, int error, const char* sourceFile,
                      int sourceLine) {
  throw NLException(function, std::string(call) + " failed: " + ErrorText(error), this, sourceFile,
                    sourceLine);
}

void NLEndpoint::setOption(e_options option, e_optlevel level, const void* value,
                           unsigned int size) {
  const Socket socket = use("NLEndpoint::setOption");
  if (!*socket) throw NLException("NLEndpoint::setOption", "Socket not opened", this);
  ::setsockopt(socket->get(), level, option, value, size);
}

void NLEndpoint::setNonBlock(bool on) {
  const Socket socket = use("NLEndpoint::setOption");
  if (!*socket) throw NLException("NLEndpoint::setOption", "Socket not opened", this);
  const int flags = ::fcntl(socket->get(), F_GETFL);
  ::fcntl(socket->get(), F_SETFL, on ? flags | O_NONBLOCK : flags & ~O_NONBLOCK);
}

void NLEndpoint::setReuseAddr(bool on) {
  const int value = on ? 1 : 0;
  setOption(reuseAddress, socketLevel, &value, sizeof value);
}

void NLEndpoint::setSilenceLimit(long milliseconds) {
  silenceLimit_ = milliseconds > 0 ? milliseconds : 0;
  const Socket socket = use("NLEndpoint::setSilenceLimit");
  if (*socket) applySilenceLimit(socket->get());
}

// An endpoint that was aborted meanwhile says so in the next call that reads or writes.
void NLEndpoint::setWatch(Watch watch) {
  watch_ = std::move(watch);
  const MutexLock lock(lock_);
  if (socket_) applySilenceLimit(socket_->get());
}

void NLEndpoint::setKeepAlive() {
  constexpr char kFunction[] = "NLEndpoint::setKeepAlive";
  const Socket socket = use(kFunction);
  if (!*socket) throw NLException(kFunction, "Socket not opened", this);
  const auto set = [&](int level, int option, int value) {
    ::setsockopt(socket->get(), level, option, &value, sizeof value);
  };
  constexpr int kIdleSeconds = 60;
  constexpr int kProbeSeconds = 20;
  constexpr int kProbes = 4;
  set(SOL_SOCKET, SO_KEEPALIVE, 1);
  set(IPPROTO_TCP, TCP_KEEPIDLE, kIdleSeconds);
  set(IPPROTO_TCP, TCP_KEEPINTVL, kProbeSeconds);
  set(IPPROTO_TCP, TCP_KEEPCNT, kProbes);
}

void NLEndpoint::setNoDelay() {
  constexpr char kFunction[] = "NLEndpoint::setNoDelay";
  const Socket socket = use(kFunction);
  if (!*socket) throw NLException(kFunction, "Socket not opened", this);
  const int on = 1;
  ::setsockopt(socket->get(), IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
}

long NLEndpoint::sinceHeard() const {
  Socket socket;
  {
    const MutexLock lock(lock_);
    socket = socket_;
  }
  if (!socket) return 0;
  tcp_info info{};
  socklen_t size = sizeof info;
  if (::getsockopt(socket->get(), IPPROTO_TCP, TCP_INFO, &info, &size) != 0) return 0;
  return static_cast<long>(std::min(info.tcpi_last_data_recv, info.tcpi_last_ack_recv));
}

void NLEndpoint::applySilenceLimit(int descriptor) const {
  const long wait = watch_ ? kWatchEvery : silenceLimit_;
  timeval limit{};
  limit.tv_sec = wait / 1000;
  limit.tv_usec = wait % 1000 * 1000;
  ::setsockopt(descriptor, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
  ::setsockopt(descriptor, SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof limit);
}

}  // namespace corvane
