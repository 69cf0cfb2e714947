#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <utility>

#include "ftp/ReplyReader.h"
#include "kit/Mutex.h"
#include "net/NLAddress.h"
#include "net/Tunnel.h"
#include "remote/Loss.h"
#include "remote/Outcome.h"
#include "remote/Waits.h"

namespace corvane {

class FtpCommand;
class NLEndpoint;
class Stream;
class TlsContext;
class TlsStream;

/// The control connection: commands, replies and their judgement (RFC 959, 4). One thread at a
/// time; Close and Interrupt from any thread. Calls that talk to the server throw FtpFailure when
/// the connection is gone, the user has cancelled, or a command is not one line.
///
/// Replies belong to the commands under way in the order in which those were sent. What the server
/// said unasked, and replies that nobody waited for, are read before the next command is sent,
/// unless that is sent ahead of them.
class FtpControl {
 public:
  /// `log` is given every line of the dialogue, with its line feed.
  explicit FtpControl(std::function<void(std::string_view)> log);
  ~FtpControl();
  FtpControl(const FtpControl&) = delete;
  FtpControl& operator=(const FtpControl&) = delete;

  /// How long a silent server is waited for. Set before Connect.
  Waits waits;

  /// Connects anew to whichever of the addresses is reached first, which are the server's or, with
  /// a tunnel, the proxy's, and then to `port`; what was said on an earlier connection is
  /// forgotten. Throws what says why that fails.
  void Connect(std::span<const NLAddress> addresses, std::optional<Tunnel> tunnel,
               std::uint16_t port);
  /// Connects to another port of the same server in the same way. Returns and throws what
  /// NLEndpoint::connectFirst and Tunnel::open do.
  [[nodiscard]] bool Join(NLEndpoint& endpoint, std::uint16_t port,
                          const std::function<bool()>& goOn) const;

  /// Encrypts the connection from here on (RFC 4217): `host` is who the server is to be. What came
  /// before in plain text must have been read: anything else may be somebody else's. Throws where
  /// that fails.
  void Encrypt(std::shared_ptr<const TlsContext> context, const std::string& host);
  /// The encryption; null while the connection is not encrypted.
  [[nodiscard]] const TlsStream* Encryption() const { return tls_.get(); }
  /// Ends an encrypted connection as it should be ended, once the server has said good-bye.
  void SayEnd();

  /// Logs and sends the command, which has no line end; its first reply.
  Reply SendCommand(std::string_view command);
  /// Sends "PASS", or "ACCT", with nothing else of the command in the log; its first reply.
  Reply SendPassword(std::string_view command);
  /// Sends a command that changes what the server holds; its first reply.
  Reply SendChange(std::string_view command);
  /// Sends a command that has the server work for long, as reading a large file through; its last
  /// reply, which may take so many milliseconds more than others.
  Reply SendSlow(std::string_view command, long milliseconds);
  /// The server's first words: 220, after 120 where it is not ready yet, or a refusal. Any other
  /// throws.
  Reply ReadGreeting();
  /// The next reply, whatever it belongs to.
  Reply ReadResponse();

  /// Judges a reply. Done is what is of the kind wanted: 2yz (done) or 3yz (the rest, please). A
  /// refusal is told as `failed` with the server's words beneath or, without `failed`, in the words
  /// that belong to the code.
  /// One with the code 0 is no reply to its command: what became of that is not known.
  [[nodiscard]] static Outcome CheckResult(const Reply& reply, const Text& failed = {},
                                           int wanted = 2);

  /// Throws where a command with `text` in it would not be one line.
  static void CheckLine(std::string_view text);
  [[nodiscard]] static bool IsLine(std::string_view text);
  /// Reads, after replies that did not come or did not fit, what else may come of the commands
  /// under way, which are then over.
  void SetRight();
  /// Whether a reply begins within `limit`. Throws when interrupted.
  [[nodiscard]] bool ComesWithin(std::chrono::milliseconds limit);
  void UpdateLog(std::string_view line) const { log_(line); }
  /// Whether the server says something within so many milliseconds.
  [[nodiscard]] bool isDataPending(long milliseconds);

  /// Both ends of the connection; with a tunnel the other one is the proxy.
  [[nodiscard]] const NLAddress& LocalAddress() const;
  [[nodiscard]] const NLAddress& ServerAddress() const { return server_; }
  [[nodiscard]] bool IsTunnelled() const { return tunnel_.has_value(); }

  [[nodiscard]] bool IsLost() const { return lost_; }
  [[nodiscard]] const Loss& HowLost() const { return loss_; }
  /// Reads what the server has said unasked; false when the connection is gone.
  [[nodiscard]] bool IsAlive();
  /// How many commands have been answered, on all connections; 421 is a good-bye and no answer.
  [[nodiscard]] std::uint64_t Answers() const { return answers_; }
  /// Gives the connection up; the first reason stays.
  void GiveUp(const Text& why);

  /// Carries out `work` and turns what it throws into its outcome.
  Outcome Guard(const std::function<Outcome()>& work);

  /// Any thread: ends the connection for good; a blocked call returns soon.
  void Close();
  [[nodiscard]] bool IsClosed() const { return closed_; }
  /// Any thread: while it is set a silent server is not waited for.
  void SetInterrupted(bool interrupted) { interrupted_ = interrupted; }
  [[nodiscard]] bool IsInterrupted() const { return interrupted_ || closed_; }

 private:
  friend class FtpCommand;

  struct UnderWay {
    FtpCommand* command = nullptr;  // null once it was let go of
    bool changes = false;           // what the server holds
    bool ahead = false;             // others were under way when it was sent
    std::string verb{};
  };

  [[nodiscard]] Stream& Wire();
  void ReadFrom(Stream& stream);
  [[nodiscard]] bool JoinFirst(std::span<const NLAddress> addresses, std::uint16_t port);
  /// Passes through the tunnel where there is one.
  [[nodiscard]] bool Pass(NLEndpoint& endpoint, std::uint16_t port,
                          const std::function<bool()>& goOn) const;
  void CheckReady(std::string_view command) const;
  /// With `gathers` it goes out with the next command, or before a reply is waited for.
  void Write(std::string_view command, std::string_view logged, bool gathers);
  void Flush();
  void ReadUnread();
  void ReadUnasked();
  /// Takes note that a reply has come, for the command that waits longest.
  void Deliver(const Reply& reply);
  [[nodiscard]] std::optional<std::chrono::seconds> Idle() const;
  using Reading =
      std::optional<Reply> (ReplyReader::*)(const std::function<void(std::string_view)>& onLine);
  /// The reply that `read` finds; nothing when the wait for it was interrupted.
  std::optional<Reply> TryRead(Reading read = &ReplyReader::Read);
  [[noreturn]] void Lose(Text why);
  /// What is the reply to the only command under way in place of one that cannot be: the next that
  /// can. Where NOOP shows that none is to come, `odd` itself with the code 0; the server is then
  /// known to reply so.
  Reply Realign(FtpCommand& command, const UnderWay& asked, Reply odd);
  /// Reads all that is still to come of what was sent, at most so many replies; Lost where that
  /// cannot be told.
  void FindEnd(std::size_t most);

  const std::function<void(std::string_view)> log_;
  NLAddress server_;
  std::optional<Tunnel> tunnel_;
  std::atomic<bool> interrupted_{false};
  std::atomic<bool> closed_{false};
  bool lost_ = true;
  Loss loss_{Text("The connection is closed")};
  bool unasked_ = false;  // what is read now belongs to no command
  std::uint64_t answers_ = 0;
  std::chrono::steady_clock::time_point spoken_;  // when last a command was sent or answered
  std::deque<UnderWay> underWay_;  // commands whose last reply has not come, the oldest first
  std::set<std::pair<std::string, int>>
      oddHabits_;         // verbs, and codes that are all it says to them
  std::string gathered_;  // commands that have not gone out yet
  int heard_ = 0;         // replies since the last command
  Mutex reach_;           // guards what Close reaches for from another thread
  std::unique_ptr<NLEndpoint> endpoint_ GUARDED_BY(reach_);
  NLEndpoint* endpointHere_ = nullptr;  // the endpoint, for the thread that works here
  std::unique_ptr<TlsStream> tls_;      // above it, where the connection is encrypted
  std::unique_ptr<ReplyReader> replies_;
};

}  // namespace corvane
