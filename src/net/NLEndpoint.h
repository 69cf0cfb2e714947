#pragma once

#include <sys/socket.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <vector>

#include "kit/Mutex.h"
#include "net/NLAddress.h"
#include "net/NLLookup.h"
#include "net/Stream.h"
#include "util/UniqueFd.h"

namespace corvane {

class NLPacket;

/// One socket, IPv4 or IPv6 as the address that it is bound or connected to. One thread at a time
/// works with it; close() and abort() may be called from any thread and make a blocked call return.
/// Failing calls throw NLException (net/NLException.h), unless stated otherwise; bind, connect,
/// listen and accept close the socket first. Timeouts are milliseconds; 0 or less waits without
/// limit.
class NLEndpoint : public Stream {
 public:
  enum e_type : int { stream = SOCK_STREAM, datagram = SOCK_DGRAM };
  enum e_optlevel : int { socketLevel = SOL_SOCKET };
  enum e_options : int { reuseAddress = SO_REUSEADDR };

  /// Bits of the state word.
  static constexpr std::uint32_t s_inval = 0;
  static constexpr std::uint32_t s_open = 1;
  static constexpr std::uint32_t s_bound = 2;
  static constexpr std::uint32_t s_connected = 4;

  /// Opens a socket; throws when the system has none.
  explicit NLEndpoint(e_type type);
  ~NLEndpoint() override;
  NLEndpoint& operator=(const NLEndpoint&) = delete;

  /// Any thread. Leaves no socket; a later bind or connect opens a fresh one.
  virtual void close() EXCLUDES(lock_);

  /// Any thread. Closes for good: every later call that needs a socket throws "Connection aborted".
  void abort() override EXCLUDES(lock_);

  // A connected socket as a stream.
  [[nodiscard]] std::size_t read(std::span<char> buffer) override;
  void write(std::span<const char> bytes) override;
  [[nodiscard]] bool wait(long milliseconds) override;
  void finish() override;

  /// Binds a fresh socket where this one is not fresh. Where any address was asked for, the local
  /// address kept is that of the machine's own name, if it resolves.
  virtual void bind(const NLAddress& address);
  virtual void bind(int port);

  virtual void connect(const NLAddress& address);
  virtual void connect(const char* host, int port);
  /// Connects to whichever of a host's addresses is reached first; they are tried as RFC 8305 has
  /// it, each for at most so many milliseconds. Asks `goOn` a few times a second; false, and
  /// nothing connected, when that said no. What `goOn` throws goes through.
  [[nodiscard]] bool connectFirst(std::span<const NLAddress> addresses, long milliseconds,
                                  const std::function<bool()>& goOn);

  virtual void listen(int backlog);

  /// A new connection, or null when none came in time.
  [[nodiscard]] virtual std::unique_ptr<NLEndpoint> accept(long timeout);

  /// One send call: the count may be less than `length`. Negative only when throwOnSendError is
  /// off.
  virtual long send(const void* data, std::size_t length, int flags = 0);
  virtual long send(NLPacket& packet, int flags = 0);
  virtual long sendto(const void* data, std::size_t length, const NLAddress& to, int flags = 0);
  virtual long sendto(NLPacket& packet, const NLAddress& to, int flags = 0);

  /// One receive call: 0 at the end of the stream or when receiveTimeout passed first. Negative
  /// only when throwOnReceiveError is off.
  virtual long recv(void* buffer, std::size_t length, int flags = 0);
  virtual long recv(NLPacket& packet, std::size_t length, int flags = 0);
  virtual long recvfrom(void* buffer, std::size_t length, NLAddress& from, int flags = 0);
  virtual long recvfrom(NLPacket& packet, std::size_t length, NLAddress& from, int flags = 0);

  /// Waits until the socket can be read (or accepted from); false when the time passed first.
  [[nodiscard]] virtual bool isDataPending(long milliseconds);

  /// Throws "Socket not opened" without a socket; what setsockopt returns is ignored.
  void setOption(e_options option, e_optlevel level, const void* value, unsigned int size);
  void setNonBlock(bool on);
  void setReuseAddr(bool on);
  /// A blocked receive or send fails once nothing has moved for so many milliseconds; 0 switches
  /// the limit off.
  void setSilenceLimit(long milliseconds);
  /// Asked a few times a second while a receive or send is blocked, with the milliseconds for which
  /// nothing has moved; when it returns false, the call fails. Must not throw.
  using Watch = std::function<bool(long silence)>;
  void setWatch(Watch watch);
  /// The system asks a silent peer after a minute whether it is still there, so that routers keep
  /// the connection and one that is gone is noticed.
  void setKeepAlive();
  /// Short messages go out at once, though the one before has not been acknowledged yet.
  void setNoDelay();
  /// Milliseconds since anything last came from the peer of a TCP connection; 0 where the system
  /// does not tell.
  [[nodiscard]] long sinceHeard() const EXCLUDES(lock_);
  void setProtocol(e_type type);

  [[nodiscard]] std::uint32_t state() const EXCLUDES(lock_);
  [[nodiscard]] const NLAddress& localAddress() const { return localAddress_; }
  [[nodiscard]] const NLAddress& remoteAddress() const { return remoteAddress_; }

  bool throwOnSendError = true;
  bool throwOnReceiveError = true;
  /// The error number of the last failed connect, send or receive.
  int lastError = 0;
  /// When 0 or more, every receive first waits so long with isDataPending; 0 waits without limit.
  long receiveTimeout = -1;

 protected:
  /// A field-by-field copy without the descriptor, which accept() fills in.
  NLEndpoint(const NLEndpoint& source);
  virtual std::unique_ptr<NLEndpoint> clone(const NLEndpoint& source) const;
  virtual void p_resetSocket();

 private:
  using Socket = std::shared_ptr<const UniqueFd>;

  /// The socket for the length of one call; an empty descriptor when there is none. Never null.
  [[nodiscard]] Socket use(const char* function) EXCLUDES(lock_);
  /// False once the socket that a call works on was closed, from whichever thread.
  [[nodiscard]] bool isCurrent(const Socket& socket) const EXCLUDES(lock_);
  /// Adds state bits, unless the socket was closed meanwhile; then fails like `call`.
  void addState(const Socket& socket, std::uint32_t bits, const char* function, const char* call);
  [[noreturn]] void fail(const char* function, const char* call, int error,
                         const char* sourceFile = __builtin_FILE(),
                         int sourceLine = __builtin_LINE());

  [[nodiscard]] std::vector<NLAddress> resolve(const char* host, std::uint16_t port)
      EXCLUDES(lock_);
  /// The address to keep for a socket bound to every address of this machine.
  [[nodiscard]] NLAddress ownAddress(const NLAddress& bound);
  /// Opens a socket of the address's family where this one is of another or none.
  void openFor(const NLAddress& address);
  /// An errno number, 0 once connected.
  [[nodiscard]] int startConnecting(const Socket& socket, const NLAddress& address);
  [[nodiscard]] int awaitConnected(const Socket& socket) const;
  /// The connection takes the place of the socket `before`, unless that was closed meanwhile.
  void adopt(const Socket& before, UniqueFd connected);
  /// Notes both ends of a connection that stands.
  void noteConnected(const Socket& socket);
  [[nodiscard]] NLAddress socketName(const Socket& socket, const char* function);
  void applySilenceLimit(int descriptor) const;
  /// Calls until something has moved, the silence limit has passed or the watch says no.
  template <typename Call>
  long patiently(Call call);
  [[nodiscard]] std::unique_ptr<char[]> packetBuffer(std::size_t length, const char* function);
  [[nodiscard]] int transferError(const Socket& socket, int error) const;
  long endSend(const Socket& socket, long result, const void* data, const char* function,
               const char* call);
  long endReceive(const Socket& socket, long result, std::size_t length, const void* buffer,
                  const char* function, const char* call);

  NLAddress localAddress_;
  NLAddress remoteAddress_;
  e_type protocol_;
  int family_ = AF_INET;
  static constexpr long kWatchEvery = 100;  // milliseconds
  long silenceLimit_ = 0;
  Watch watch_;

  // Each call shares the socket while it runs. Closing shuts a shared one down at once, which wakes
  // the blocked call, and the last to let go of it closes the descriptor; so its number cannot be
  // reused under a running call.
  mutable Mutex lock_;
  Socket socket_ GUARDED_BY(lock_);
  std::uint32_t state_ GUARDED_BY(lock_) = s_inval;
  std::shared_ptr<NLLookup> lookup_ GUARDED_BY(lock_);
  bool aborted_ GUARDED_BY(lock_) = false;
};

}  // namespace corvane
