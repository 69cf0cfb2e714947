#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "ftp/BrowserUi.h"
#include "ftp/Refusals.h"
#include "ftp/ReplyReader.h"
#include "ftp/TransferUi.h"
#include "kit/Mutex.h"
#include "net/NLAddress.h"
#include "net/NLEndpoint.h"

namespace corvane {

class LocalFile;
class NLLookup;
struct NLException;

/// One connection to an FTP server (RFC 959): its control connection and, while something is listed
/// or transferred, its data connection.
///
/// An engine belongs to a browser window or to one transfer. Worker threads only, one at a time:
/// see EngineLease. Close, AbortData and Aborted may be called from any thread. Commands are built
/// as text with one "\n" at the end. Calls that talk to the server throw NLException when the
/// connection is lost, unless they say otherwise.
class MFtp {
 public:
  /// What the server says of itself (SYST).
  enum ServerType : std::int32_t { kUnix = 0, kWindowsNT = 1, kAppleShare = 2 };

  /// One entry of a directory on the way through a tree.
  struct WalkEntry {
    std::string name;
    std::int64_t size = 0;  ///< bytes; plain files only
    std::int32_t type = kFile;
  };

  struct Listing {
    std::string text;    ///< without carriage returns
    bool whole = false;  ///< the data ended cleanly and the server confirmed it
  };

  struct DownloadJob {
    std::string name;            ///< raw bytes, as listed
    std::int64_t expected = -1;  ///< the listed size in bytes; -1 when not known
    std::int64_t offset = 0;     ///< where the server was told to start (REST)
    bool empty = true;           ///< empty the local file once the server has accepted
  };

  /// The way down the server's tree, by the absolute paths that the server gave; a path that is not
  /// known is empty. The first one is where the walk began.
  struct Walk {
    std::vector<std::string> paths;
    bool lost = false;  ///< the way back was refused: nobody knows where the connection stands
  };

  static constexpr std::size_t kMaxListing = 1024UL * 1024 * 1024;
  static constexpr std::size_t kMaxDepth = 128;
  static constexpr std::size_t kMaxName = 4096;
  static constexpr std::string_view BINARY = "TYPE I\n";

  /// A browser's connection: it has a log and a status line, and its warnings are shown.
  MFtp(std::string host, std::uint16_t port, const std::string& user, const std::string& password,
       bool passive, std::shared_ptr<BrowserUi> browser);
  /// A transfer's connection: it reports into one row and shows no warnings.
  MFtp(std::string host, std::uint16_t port, const std::string& user, const std::string& password,
       bool passive, std::shared_ptr<TransferUi> row);
  ~MFtp();
  MFtp(const MFtp&) = delete;
  MFtp& operator=(const MFtp&) = delete;

  // --- control connection: MFtpControl.cpp

  /// Sends the text unchanged; no log, no reply. 1, or 0 when it is not one line (nothing is sent).
  int Send(std::string_view command);
  /// Logs and sends the command with "\r\n" at its end; the reply's code, not judged. 0 when the
  /// command is not one line: nothing is sent and the user is warned.
  int SendCommand(std::string_view command);
  /// The same, with only "PASS\n" in the log.
  int SendPassword(std::string_view command);
  /// Reads one complete reply; its code. A 421 ends the connection.
  int ReadResponse();
  /// Logs and sends like SendCommand; the reply's text, carriage returns removed.
  std::string ReturnResponse(std::string_view command);
  /// Whether the caller may go on (not 0); warns the browser's user about some refusals.
  int CheckResult(int code);
  /// The same where every refusal has to be said: what CheckResult passes over in silence becomes a
  /// warning of `failed` and the server's words.
  bool Accepted(int code, std::string_view failed);
  /// Whether a reply is of the kind wanted, 2yz (done) or 3yz (the rest, please); else the user is
  /// warned of `failed`, with the server's words beneath.
  bool Succeeded(int code, std::string_view failed, int kind = 2);
  void UpdateLog(std::string_view text);
  /// False only when the browser window is closing: the caller stops.
  bool UpdateStatus(std::string_view text);
  /// Whether the server says something within 700 milliseconds.
  bool isDataPending();
  /// Warns the browser's user; a transfer keeps the text as its failure only.
  void Warn(std::string_view text);

  // --- the session: MFtpLogin.cpp

  /// Resolves, connects and logs in: 1; 0 failed or the window is closing; -1 failed on a transfer
  /// after its row was told. The connection is lost then. Never throws.
  std::int32_t Login();
  void GetServerType();
  [[nodiscard]] std::int32_t ReturnServerType() const { return serverType_; }
  /// Asks for the working directory and hands it to the browser window; false when the server does
  /// not tell.
  bool SetPWD();
  /// Takes it that a change to `directory` went where it says.
  void AssumePWD(std::string_view directory);
  /// Whether the connection stands in `directory`, as far as it was told where it stands.
  [[nodiscard]] bool StandsIn(std::string_view directory) const {
    return path_.empty() || path_ == directory;
  }
  /// Says good-bye; a server that does not answer at once is not waited for.
  void Quit();
  /// The reply code, not judged.
  int ChangeDir(std::string_view directory);
  /// Any thread: ends the connection for good, without a word to the server; every blocked call
  /// returns soon.
  void Close();
  [[nodiscard]] bool Aborted() const { return aborted_.load(); }

  // --- listings: MFtpListing.cpp

  /// Fetches the listing over the data connection that was set up. Never throws for a failed data
  /// connection; the user is warned and what came is returned.
  Listing GetListing();
  /// Shows a listing in the browser window; false when the window is closing.
  bool ParseListing(std::string_view text);
  /// The entries of a listing, devices, "." and ".." left out; link names uncut.
  [[nodiscard]] std::vector<WalkEntry> Parse(std::string_view text) const;

  // --- data connections and transfers: MFtpData.cpp, MFtpTransfer.cpp

  /// Announces a listening socket with PORT; false when the server refused.
  bool SetUpActive();
  /// Asks for the server's port with PASV: 1, or 0 when it named none.
  int SetUpPassive();
  /// One of the two, by the connection's passive flag.
  bool SetUpData();
  /// The same, and binary mode where it is not in force; what comes before every transfer
  /// (LastFailure says what failed).
  bool PrepareTransfer();
  /// Closes the data connection if there is one.
  void DataCommClose();
  /// Any thread: a blocked data connection returns; the control connection stays.
  void AbortData();

  /// Fetches one file over the data connection that was set up: 1 finished; 0 the server refused,
  /// nothing has moved and the connection is in step; -1 failed or cancelled (LastFailure says
  /// why). Where the server turns out to have ignored `offset`, the whole file is fetched. `file`
  /// stays open. Never throws.
  int Download(TransferUi& row, LocalFile& file, DownloadJob job,
               const std::atomic<bool>& cancelled);
  /// Stores the rest of an open file under `name`: 1, 0 or -1, as above.
  int Upload(TransferUi& row, LocalFile& file, const std::string& name,
             const std::atomic<bool>& cancelled);

  /// The size in bytes that the server states, or -1.
  std::int64_t GetFileSize(std::string_view name);
  /// Shows a remote file as text in a window: 1, or 0 when the server refused.
  int ViewFile(const std::string& name);

  // --- trees: MFtpWalk.cpp, MFtpDelete.cpp

  /// Goes down one step; false when that was refused or must not be done (LastFailure says why).
  /// The connection then stands where it stood, unless the walk is lost. A directory that is on the
  /// way down already is not entered. With `ask` the server is asked where it has gone; without,
  /// the name is believed.
  bool EnterDirectory(Walk& walk, const std::string& name, bool ask);
  /// Goes up one step; false when the way back was refused: the walk is lost.
  bool LeaveDirectory(Walk& walk);
  /// Goes back to where the walk began, however it was broken off. A server that is silent after a
  /// cancellation is not waited for: its answers are taken before the next command. Throws when the
  /// directory cannot be reached: the connection is given up.
  void ReturnToStart(Walk& walk);

  /// Deletes one entry that is no directory; false when it is still there.
  bool DeleteFile(const std::string& name, Refusals& refused);
  /// Deletes a directory with all that is in it; links are not followed. Not 0 on success. Ends in
  /// the directory in which it began.
  int DeleteDirectory(const std::string& name, Refusals& refused);

  // --- state

  /// Why the last operation failed, for the user; the server's own words where it gave some.
  [[nodiscard]] const std::string& LastFailure() const { return failure_; }
  /// The last line of the last reply, from its fifth character on.
  [[nodiscard]] const std::string& LastReplyText() const { return lastReplyText_; }
  [[nodiscard]] const std::string& Host() const { return host_; }
  [[nodiscard]] bool Passive() const { return passive_; }
  /// The working directory, as far as it was asked for.
  [[nodiscard]] const std::string& Path() const { return path_; }
  /// Once `cancelled` is true a reply is waited for no longer than it takes to see that the server
  /// is silent; it is taken before the next command. For transfers that cannot Close, the
  /// connection being another's; null ends it.
  void HurryWhen(const std::atomic<bool>* cancelled);
  /// Takes what the server still has to say of its own accord, so that the next command is in step.
  void ReadPendingReplies();
  /// The connection broke, or the server said 421; a new Login is needed.
  [[nodiscard]] bool Lost() const { return lost_; }
  /// Gives the connection up and tells the browser's user that it is gone, and why.
  void ReportLost(const NLException& error);
  /// Tells the browser's user once more that the connection is gone ('LOST').
  void ReportGone();

  /// How long a silent server is waited for, in milliseconds. Set before Login.
  long silenceLimit = 120'000;

 private:
  friend class EngineLease;

  MFtp(std::string host, std::uint16_t port, const std::string& user, const std::string& password,
       bool passive);

  // control
  [[nodiscard]] static std::string WithLineEnd(std::string_view command);
  bool IsOneLine(std::string_view command);
  void SendLine(std::string_view command);
  void SendControl(std::string_view bytes);
  Reply ReadReply();
  void ReadOwedReply();
  [[noreturn]] void GiveUp(std::string_view why);
  void PostLost(std::string_view text);
  [[nodiscard]] OwnerUi& Owner() const;

  // login
  std::int32_t TryLogin();
  bool Resolve();
  std::int32_t Identify();
  std::int32_t RefusedLogin(const std::string& text, const std::string& words, bool tellOwner);
  std::int32_t FailConnection();
  void PostError(std::string_view text, std::string_view detail = {});
  std::optional<std::string> AskPath();

  // data
  enum class DataState { Open, Refused, Failed };
  void SetDataEndpoint(std::unique_ptr<NLEndpoint> endpoint);
  DataState OpenData(const std::string& command, std::string_view logged,
                     const std::atomic<bool>& cancelled);
  bool AcceptData(const std::atomic<bool>& cancelled);
  void ConnectData();
  void ConnectInVain() const;
  [[nodiscard]] bool Hurried() const { return hurry_ != nullptr && *hurry_; }
  bool JudgePreliminary(int code);
  bool FinishData();
  void DropRefused();
  void WarnOfMode(std::string_view text);
  NLEndpoint* DataEndpoint();
  bool ReadListing(Listing& listing);
  bool ReadListingData(std::string& text);
  int Transfer(const std::string& command, const std::atomic<bool>& cancelled,
               const std::function<bool()>& move);
  int Fetch(TransferUi& row, LocalFile& file, const DownloadJob& job,
            const std::atomic<bool>& cancelled);
  bool Receive(TransferUi& row, LocalFile& file, const DownloadJob& job,
               const std::atomic<bool>& cancelled);
  bool SendFile(TransferUi& row, LocalFile& file, const std::atomic<bool>& cancelled);
  void FillViewer(TextSink& viewer);
  bool CameWhole(const DownloadJob& job, std::int64_t received);
  void Fail(std::string_view why);
  void FailFrom(const NLException& error);

  // trees
  bool DeleteFile(const std::string& name, const std::string& shown, Refusals& refused);
  int DeleteDirectory(const std::string& name, Walk& walk, Refusals& refused);
  bool MayWalk(const Walk& walk);
  [[nodiscard]] static bool StandsBelow(const Walk& walk, const std::string& name);
  bool DeleteEntries(Walk& walk, const std::string& shown, Refusals& refused);

  const std::string host_;
  const std::uint16_t port_;
  const std::string userCommand_;
  const std::string passCommand_;
  const bool passive_;
  std::shared_ptr<BrowserUi> browser_;  // set for a browser's connection
  std::shared_ptr<TransferUi> row_;     // set for a transfer's connection

  std::string lastReplyText_;
  std::string path_;     // the working directory, as far as it was asked for
  bool warned_ = false;  // the user was warned since Accepted last looked
  int lastCode_ = 0;
  std::string failure_;
  std::string lostWhy_;  // why the connection is gone, where that is known
  std::int32_t serverType_ = kUnix;
  std::string listCommand_ = "LIST -la\n";
  std::uint16_t passivePort_ = 0;
  NLEndpoint controlEndpoint_;
  ReplyReader replies_;
  NLAddress serverAddress_;
  NLAddress dataAddress_;
  bool lost_ = false;
  bool completionDue_ = false;  // the command in hand still owes its completion reply
  bool localFailure_ = false;   // the transfer in hand failed on this machine
  bool ignoredOffset_ = false;  // the transfer in hand began at the start of the file
  bool binary_ = false;         // TYPE I is in force
  int owedReplies_ = 0;         // replies that nobody waited for; read before the next command
  bool returnOwed_ = false;     // the last of them says whether the directory is the right one
  const std::atomic<bool>* hurry_ = nullptr;

  std::atomic<bool> aborted_{false};
  std::mutex lease_;
  // Guards what Close and AbortData reach for from other threads.
  Mutex reach_;
  std::unique_ptr<NLEndpoint> dataEndpoint_ GUARDED_BY(reach_);
  std::shared_ptr<NLLookup> lookup_ GUARDED_BY(reach_);
};

/// Sends every byte, in as many calls as it takes. Throws what NLEndpoint::send throws.
void SendAll(NLEndpoint& endpoint, std::string_view bytes);

/// The part of an exception's message that a user understands: the system's own words.
[[nodiscard]] std::string Reason(const NLException& error);

}  // namespace corvane
