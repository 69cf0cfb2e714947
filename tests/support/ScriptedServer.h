#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "kit/Mutex.h"
#include "net/NLAddress.h"
#include "remote/Site.h"
#include "support/TlsEnd.h"
#include "support/VirtualTree.h"
#include "util/UniqueFd.h"

namespace corvane {

/// What becomes of the control connection once the verb has been dealt with.
enum class ControlEnd { Open, Close, Reset };

/// What becomes of the data connection after `dataLimit` bytes. A stall lasts until the client
/// hangs up.
enum class DataEnd { Close, Reset, Stall };

/// How the server deals with a verb, where that differs from its own good manners; in the order in
/// which it happens.
struct ScriptedAction {
  std::function<void()> arrived = {};  ///< called on the server's thread
  /// Sent in place of doing anything: whole replies, half a line, or "" for silence. "{port}"
  /// becomes the two numbers of the passive port (PASV listens all the same),
  /// "{epsv}" the port as EPSV tells it.
  std::optional<std::string> reply = {};
  std::string before = {};   ///< sent ahead of what it says first, in one packet with it
  std::string after = {};    ///< likewise, behind it
  std::string endless = {};  ///< said again and again, until the client hangs up, in place of it
  bool late = false;         ///< what it says is held back for 2 seconds, or until the next command
  bool byteByByte = false;   ///< every byte of a reply in a packet of its own

  // LIST, RETR and STOR.
  bool strangerFirst = false;  ///< active: 127.0.0.2 connects and sends rubbish before the server
  std::optional<std::string> preliminary = {};  ///< in place of the 150; "" leaves it out
  std::optional<std::string> data = {};         ///< in place of what the tree holds
  std::size_t dataLimit = std::string::npos;    ///< bytes moved before `dataEnd`
  DataEnd dataEnd = DataEnd::Close;
  std::optional<std::string> completion = {};  ///< in place of the 226; "" leaves it out
  bool endsFirst =
      false;  ///< before a stall: the completion, and the end of the control connection

  ControlEnd control = ControlEnd::Open;

  // AUTH and encrypted data.
  std::size_t handshakeLimit = std::string::npos;  ///< bytes of it after which all is over
  bool saysEnd = true;                             ///< close_notify at the end of data
};

/// An FTP server on a loopback port, serving a tree in memory, that misbehaves as it is told.
///
/// Every control connection has its own thread; every wait is bounded. All calls from any thread.
class ScriptedServer {
 public:
  /// `host` is the address that it listens on and connects from. Where many run at once and break
  /// off, each has one of its own: a port that one client has let go of may be the next one's, and
  /// a late connection to it is then a stranger's.
  explicit ScriptedServer(const NLAddress& host = NLAddress("127.0.0.1", 0));
  /// Hangs up everywhere and waits for the threads.
  ~ScriptedServer();
  ScriptedServer(const ScriptedServer&) = delete;
  ScriptedServer& operator=(const ScriptedServer&) = delete;

  [[nodiscard]] std::uint16_t Port() const { return port_; }
  /// The way to it for the user "u".
  [[nodiscard]] Site Where(bool passive) const;
  [[nodiscard]] VirtualTree& Tree() { return tree_; }

  /// Scripts a verb, or "greeting" for a connection that begins. `occurrence` counts from 1 over
  /// all connections; 0 stands for every one that has no action of its own.
  void On(const std::string& verb, ScriptedAction action, int occurrence = 0);

  /// Scripts the verb as it comes next.
  void OnNext(const std::string& verb, ScriptedAction action);
  /// From now on lists these lines of FEAT, joined with "|", and deals with those of MLST, MDTM,
  /// MFMT and XSHA256 among them.
  void Offer(const std::string& features) {
    const MutexLock hold(lock_);
    features_ = features;
  }
  /// From now on offers AUTH TLS with this identity; or encrypts from the first byte on.
  void Encrypt(const TestIdentity& identity, bool atOnce = false) {
    const MutexLock hold(lock_);
    tls_ = std::make_shared<TlsServer>(identity);
    encryptsAtOnce_ = atOnce;
  }
  /// From now on says `words` and closes where so many milliseconds pass without a command.
  void CloseIdle(int milliseconds, std::string words) {
    const MutexLock hold(lock_);
    idleWords_ = std::move(words);
    idleLimit_ = milliseconds;
  }
  /// How many connections were closed for that.
  [[nodiscard]] int Closed() const { return closed_; }

  /// The commands of all connections as they came, line ends included.
  [[nodiscard]] std::vector<std::string> Transcript() const {
    const MutexLock hold(lock_);
    return commands_;
  }
  /// Both directions, for messages: "> " before what the client sent, "< " before replies.
  [[nodiscard]] std::string Dialogue() const {
    const MutexLock hold(lock_);
    return dialogue_;
  }

 private:
  friend class ScriptedSession;

  /// A listening socket on a free port of its address, and that port.
  [[nodiscard]] std::pair<UniqueFd, std::uint16_t> ListenOnHost() const;
  void Listen();
  /// One control connection, on a thread of its own.
  void Serve(UniqueFd control);
  [[nodiscard]] std::shared_ptr<TlsServer> Tls() {
    const MutexLock hold(lock_);
    return tls_;
  }
  [[nodiscard]] std::string Features() const {
    const MutexLock hold(lock_);
    return features_;
  }
  [[nodiscard]] ScriptedAction Next(const std::string& verb);
  void NoteCommand(const std::string& line) {
    const MutexLock hold(lock_);
    commands_.push_back(line);
    dialogue_ += "> " + line;
  }
  void NoteReply(const std::string& text) {
    const MutexLock hold(lock_);
    dialogue_ += "< " + text + (text.ends_with('\n') ? "" : "\n");
  }

  const NLAddress host_;
  VirtualTree tree_;
  UniqueFd listener_;
  UniqueFd stop_;  ///< readable once the server stops
  std::uint16_t port_ = 0;
  mutable Mutex lock_;
  std::map<std::pair<std::string, int>, ScriptedAction> script_ GUARDED_BY(lock_);
  std::map<std::string, int> seen_ GUARDED_BY(lock_);
  std::vector<std::string> commands_ GUARDED_BY(lock_);
  std::string dialogue_ GUARDED_BY(lock_);
  std::shared_ptr<TlsServer> tls_ GUARDED_BY(lock_);
  std::string features_ GUARDED_BY(lock_);
  std::string idleWords_ GUARDED_BY(lock_);
  std::atomic<bool> encryptsAtOnce_{false};
  std::atomic<int> idleLimit_{-1};
  std::atomic<int> closed_{0};
  std::thread thread_;
};

}  // namespace corvane
