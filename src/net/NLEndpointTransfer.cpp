#include <fcntl.h>

#include <algorithm>
#include <cerrno>
#include <new>
#include <string>

#include "net/NLDebug.h"
#include "net/NLEndpoint.h"
#include "net/NLException.h"
#include "net/NLPacket.h"
#include "util/ErrorText.h"

namespace corvane {
namespace {

template <typename Call>
long Retrying(Call call) {
  long result = 0;
  do {
    result = call();
  } while (result < 0 && errno == EINTR);
  return result;
}

void Dump(const void* data, long result, const char* title) {
  const auto length = static_cast<unsigned long>(std::max(result, 0L));
  NLDebug::dump(static_cast<const char*>(data), length, title);
}

}  // namespace

template <typename Call>
long NLEndpoint::patiently(Call call) {
  for (long silence = 0;;) {
    const long result = Retrying(call);
    if (result >= 0 || errno != EAGAIN || !watch_) return result;
    silence += kWatchEvery;
    const bool over = silenceLimit_ > 0 && silence >= silenceLimit_;
    if (!over && watch_(silence)) continue;
    errno = over ? EAGAIN : ECANCELED;
    return result;
  }
}

long NLEndpoint::send(const void* data, std::size_t length, int flags) {
  constexpr char kFunction[] = "NLEndpoint::send()";
  const Socket socket = use(kFunction);
  const long result =
      patiently([&] { return ::send(socket->get(), data, length, flags | MSG_NOSIGNAL); });
  return endSend(socket, result, data, kFunction, "::send()");
}

std::size_t NLEndpoint::read(std::span<char> buffer) {
  return static_cast<std::size_t>(std::max(recv(buffer.data(), buffer.size()), 0L));
}

void NLEndpoint::write(std::span<const char> bytes) {
  while (!bytes.empty()) {
    const long sent = send(bytes.data(), bytes.size());
    bytes = bytes.subspan(static_cast<std::size_t>(sent));
  }
}

void NLEndpoint::finish() {
  const Socket socket = use("NLEndpoint::finish()");
  if (*socket) ::shutdown(socket->get(), SHUT_WR);
}

long NLEndpoint::send(NLPacket& packet, int flags) {
  return send(packet.data(), packet.size(), flags);
}

long NLEndpoint::sendto(const void* data, std::size_t length, const NLAddress& to, int flags) {
  constexpr char kFunction[] = "NLEndpoint::sendto()";
  const Socket socket = use(kFunction);
  sockaddr_storage target{};
  to.get(target);
  const long result = Retrying([&] {
    return ::sendto(socket->get(), data, length, flags | MSG_NOSIGNAL,
                    reinterpret_cast<const sockaddr*>(&target), to.length());
  });
  return endSend(socket, result, data, kFunction, "::sendto()");
}

long NLEndpoint::sendto(NLPacket& packet, const NLAddress& to, int flags) {
  return sendto(packet.data(), packet.size(), to, flags);
}

long NLEndpoint::recv(void* buffer, std::size_t length, int flags) {
  constexpr char kFunction[] = "NLEndpoint::recv()";
  if (receiveTimeout >= 0 && !isDataPending(receiveTimeout)) return 0;
  const Socket socket = use(kFunction);
  const long result = patiently([&] { return ::recv(socket->get(), buffer, length, flags); });
  return endReceive(socket, result, length, buffer, kFunction, "::recv()");
}

long NLEndpoint::recvfrom(void* buffer, std::size_t length, NLAddress& from, int flags) {
  constexpr char kFunction[] = "NLEndpoint::recvfrom()";
  if (receiveTimeout >= 0 && !isDataPending(receiveTimeout)) return 0;
  const Socket socket = use(kFunction);
  sockaddr_storage sender{};
  socklen_t senderLength = sizeof sender;
  const long result = Retrying([&] {
    return ::recvfrom(socket->get(), buffer, length, flags, reinterpret_cast<sockaddr*>(&sender),
                      &senderLength);
  });
  const long count = endReceive(socket, result, length, buffer, kFunction, "::recvfrom()");
  if (count >= 0) from.set(sender);
  return count;
}

long NLEndpoint::recv(NLPacket& packet, std::size_t length, int flags) {
  const std::unique_ptr<char[]> buffer = packetBuffer(length, "NLEndpoint::recv()");
  const long result = recv(buffer.get(), length, flags);
  if (result > 0) packet.insert(buffer.get(), static_cast<unsigned long>(result));
  return result;
}

long NLEndpoint::recvfrom(NLPacket& packet, std::size_t length, NLAddress& from, int flags) {
  const std::unique_ptr<char[]> buffer = packetBuffer(length, "NLEndpoint::recvfrom()");
  const long result = recvfrom(buffer.get(), length, from, flags);
  if (result > 0) packet.insert(buffer.get(), static_cast<unsigned long>(result));
  return result;
}

std::unique_ptr<char[]> NLEndpoint::packetBuffer(std::size_t length, const char* function) {
  std::unique_ptr<char[]> buffer(new (std::nothrow) char[length]);
  if (buffer) return buffer;
  throw NLException(
      function, "new failed allocating " + std::to_string(length) + " bytes: " + ErrorText(ENOMEM),
      this);
}

int NLEndpoint::transferError(const Socket& socket, int error) const {
  if (*socket && !isCurrent(socket)) return ECONNABORTED;
  // A blocking socket says "try again" only when its silence limit has passed.
  const bool blocking = (::fcntl(socket->get(), F_GETFL) & O_NONBLOCK) == 0;
  return error == EAGAIN && blocking ? ETIMEDOUT : error;
}

long NLEndpoint::endSend(const Socket& socket, long result, const void* data, const char* function,
                         const char* call) {
  if (result < 0) {
    lastError = transferError(socket, errno);
    if (throwOnSendError) fail(function, call, lastError);
  }
  Dump(data, result, "NLEndpoint sent:");
  return result;
}

long NLEndpoint::endReceive(const Socket& socket, long result, std::size_t length,
                            const void* buffer, const char* function, const char* call) {
  int error = errno;
  // The end that a shutdown from this side makes must not pass for the peer's end of stream.
  if (result == 0 && length != 0 && !isCurrent(socket)) {
    result = -1;
    error = ECONNABORTED;
  }
  if (result < 0) {
    lastError = transferError(socket, error);
    if (throwOnReceiveError) fail(function, call, lastError);
  }
  Dump(buffer, result, "NLEndpoint received:");
  return result;
}

}  // namespace corvane
