#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string_view>

#include "kit/Mutex.h"
#include "remote/Outcome.h"

namespace corvane {

class FtpCommand;
class FtpControl;
class NLEndpoint;
class Stream;
class TlsStream;
struct Habits;
struct Reply;

/// How the data connection of a command comes about: active (PORT) or passive (PASV), RFC 959, 3.2
/// and 4.1.2; over IPv6, and where a server refuses these, by EPRT and EPSV (RFC 2428). Where one
/// way fails the other is tried once, and kept to where it works. Through a tunnel only the passive
/// way leads anywhere. One thread at a time; Abort from any thread.
///
/// An active connection is taken from the server alone; a passive one goes to the server, whatever
/// address its reply names.
class DataChannel {
 public:
  /// Neither `control` nor `habits`, where is learned which way works, is owned.
  DataChannel(FtpControl& control, Habits& habits, bool passive);
  ~DataChannel();
  DataChannel(const DataChannel&) = delete;
  DataChannel& operator=(const DataChannel&) = delete;

  /// Once the control connection stands: what is known of its server holds for no other.
  void Begin();
  /// From now on this way alone is tried, whatever is known of it.
  void KeepTo(bool passive) {
    passive_ = passive;
    triedBoth_ = true;
  }
  /// Announces a listening socket or asks for the server's port, ahead of a command.
  Outcome SetUp();
  /// The command that asks for the port of the connection after this one; empty where it is too
  /// early to tell how that will come about.
  [[nodiscard]] std::string_view PortCommandAhead() const;
  /// The reply to that command. The next SetUp makes use of it.
  void TakePortAhead(const Reply& reply);
  /// Opens the data connection for a command that was just sent and judges its first reply. The
  /// control connection is watched meanwhile, so that a refusal ends the wait. After a failure the
  /// command is complete. After SetUp failed, or either threw, Close is still to be called.
  Outcome Open(FtpCommand& command);
  /// After a failed Open: whether another way, which is then in force, is worth a try.
  [[nodiscard]] bool TryOtherWay();

  /// Whether data connections are encrypted, with the control connection's session (RFC 4217).
  void SetProtected(bool isProtected) { protected_ = isProtected; }

  /// Asked while a read or write on the open connection is blocked, as NLEndpoint::setWatch has it.
  void SetWatch(std::function<bool(long silence)> watch);
  /// The open connection.
  [[nodiscard]] Stream& Connection();
  /// Whether what was read on the last connection may be cut: the encryption was not ended as it
  /// should be.
  [[nodiscard]] bool WasCut() const;
  /// This server never ends encryption as it should, and nothing was missing all the same.
  void NoteCareless();
  /// Whether the open connection failed because nothing moved for too long.
  [[nodiscard]] bool WentSilent();
  /// Closes the data connection if there is one.
  void Close();
  /// Any thread: a blocked data connection returns.
  void Abort() EXCLUDES(reach_);

 private:
  struct Attempt;

  Outcome SetUpActive();
  Outcome SetUpPassive();
  Outcome SetUpThisWay();
  /// A way that has led nowhere yet is left for one that works.
  void ChooseWay();
  [[nodiscard]] std::optional<std::uint16_t> PortIn(const Reply& reply) const;
  /// Makes use of a port that was asked for ahead; false where there is none.
  [[nodiscard]] bool TakeEarlyPort();
  void WayWorks();
  /// Nothing came about in the way in force; one on trial is left again.
  void WayFailed();
  void Connect(Attempt& attempt);
  void Accept(Attempt& attempt);
  void ConnectInVain();
  /// Encrypts the open connection of a command that was accepted.
  Outcome Encrypt(Attempt& attempt);
  void SetEndpoint(std::unique_ptr<NLEndpoint> endpoint) EXCLUDES(reach_);
  [[nodiscard]] NLEndpoint* Endpoint() EXCLUDES(reach_);

  struct EarlyPort {
    std::uint16_t port = 0;
    std::chrono::steady_clock::time_point when{};
  };

  FtpControl& control_;
  Habits& habits_;
  bool passive_;
  bool protected_ = false;
  bool cut_ = false;
  bool careless_ = false;      // which has been said
  bool noConnection_ = false;  // no data connection came about, and that is all that failed
  bool triedBoth_ = false;
  bool onTrial_ = false;          // the way in force is the other one, and has not led anywhere yet
  bool extendedActive_ = false;   // by EPRT
  bool extendedPassive_ = false;  // by EPSV
  std::uint16_t passivePort_ = 0;
  std::optional<EarlyPort> earlyPort_;
  bool usesEarlyPort_ = false;  // the connection that is set up
  Mutex reach_;                 // guards what Abort reaches for from another thread
  std::unique_ptr<NLEndpoint> endpoint_ GUARDED_BY(reach_);
  std::unique_ptr<TlsStream> tls_;  // above the endpoint, where the connection is encrypted
};

}  // namespace corvane
