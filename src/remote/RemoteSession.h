#pragma once

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "remote/Loss.h"
#include "remote/Outcome.h"
#include "remote/RemoteEntry.h"
#include "util/Digest.h"

namespace corvane {

/// What permissions an entry is to have: the twelve bits that chmod knows.
struct ModeChange {
  std::string path;
  unsigned mode = 0;
};

/// What a listing is handed to, in the order of the calls. On the thread that lists.
class ListingSink {
 public:
  virtual ~ListingSink() = default;
  /// The listing's text as it came, without carriage returns; once, before the entries.
  virtual void Raw(std::string_view text) = 0;
  /// A few hundred entries at a time, "." and ".." left out; false to hear no more.
  virtual bool Add(std::vector<RemoteEntry> entries) = 0;
  /// An entry whose name is too long to be shown or used; what there is of the name is too long as
  /// well. Behind all others.
  virtual void AddTooLong(const RemoteEntry& /*entry*/) {}
};

/// A remote file while its bytes move, on the session that opened it and its thread. One that is
/// let go of before Finish is broken off; the session can go on.
class RemoteFile {
 public:
  virtual ~RemoteFile() = default;

  /// Where in the file the bytes begin: the offset that was asked for, or 0 where the server cannot
  /// begin there.
  [[nodiscard]] virtual std::int64_t Offset() const = 0;
  /// Reads what is there, at least a byte; `got` is 0 at the end.
  virtual Outcome Read(std::span<char> buffer, std::size_t& got) = 0;
  /// Whether there is something to read within `milliseconds`, the end included; also where nothing
  /// has come for as long as a silent server is waited for, which Read then tells.
  [[nodiscard]] virtual bool Wait(long milliseconds) = 0;
  /// Writes all the bytes.
  virtual Outcome Write(std::span<const char> bytes) = 0;

  /// What is wanted of the server once a transfer has ended; asked for along with its end where
  /// that saves time.
  struct Afterwards {
    std::optional<std::int64_t> setTime{};  ///< of a file that was written, in seconds since 1970
    bool askSize = false;                   ///< of the file as it stands now
    bool askTime = false;                   ///< when the file was changed
    bool more = false;                      ///< another transfer follows at once
  };
  /// What has come of it.
  struct Settled {
    std::optional<Outcome> time{};         ///< of setting it; nothing where that was not tried
    std::optional<std::int64_t> size{};    ///< nothing where the server did not tell
    std::optional<RemoteTime> modified{};  ///< likewise
  };
  /// Ends the transfer and takes the server's verdict. Done only when every byte has come or gone
  /// as far as the server knows; what was wanted afterwards does not change that.
  virtual Outcome Finish(const Afterwards& wanted, Settled& settled) = 0;
  Outcome Finish() {
    Settled settled;
    return Finish({}, settled);
  }
};

/// One connection to a server, whatever its protocol. One thread at a time, see EngineLease; Close
/// and Interrupt from any thread. No call throws.
///
/// Paths are the server's raw bytes: absolute, or relative to where the connection began where the
/// server does not tell where that is; "" is that place itself. A session keeps its working
/// directory to itself. Once the connection is gone every call returns Lost until the next Connect.
class RemoteSession {
 public:
  virtual ~RemoteSession() = default;

  /// Resolves, connects, logs in and settles what is to be settled once. Anew after a loss.
  virtual Outcome Connect() = 0;
  /// Says good-bye; a server that is silent is not waited for.
  virtual void Quit() = 0;

  /// The server's name, for the user.
  [[nodiscard]] virtual const std::string& Host() const = 0;
  /// Where the server stands, as it last told; after Connect that is where the connection began.
  [[nodiscard]] virtual const std::string& Directory() const = 0;
  /// Enters a directory; `where` becomes its own path, as the server tells it.
  virtual Outcome Enter(const std::string& path, std::string& where) = 0;

  /// Lists a directory. Done only when the listing came whole and its entries were understood; what
  /// came is handed over all the same, and nothing at all where the connection was lost or the user
  /// stopped before.
  virtual Outcome List(const std::string& path, ListingSink& sink) = 0;
  /// The size of a file in bytes; nothing when the server does not tell, as for directories.
  virtual Outcome Size(const std::string& path, std::optional<std::int64_t>& size) = 0;

  /// Whether anything stands at a path. Done when the server could tell.
  virtual Outcome Exists(const std::string& path, bool& exists) = 0;

  /// What stands at a path, told as a listing would; Refused where the server does not tell.
  virtual Outcome Stat(const std::string& path, RemoteEntry& entry) = 0;

  /// Whether the server can copy what it holds.
  virtual Outcome CanCopy(bool& can) = 0;
  /// Has the server copy a file, or a directory where it can; what is there may be replaced.
  virtual Outcome Copy(const std::string& from, const std::string& to) = 0;
  /// How many bytes may still be stored in a directory; nothing where the server does not tell.
  virtual Outcome FreeSpace(const std::string& path, std::optional<std::int64_t>& bytes) = 0;

  /// When a file was last changed, in UTC; nothing where the server does not tell.
  virtual Outcome ModifiedTime(const std::string& path, std::optional<RemoteTime>& time) = 0;
  /// Sets that time, in seconds since 1970; Refused where the server cannot.
  virtual Outcome SetModifiedTime(const std::string& path, std::int64_t seconds) = 0;
  /// Whether it may be able to, as far as it has told. Once connected.
  [[nodiscard]] virtual bool SetsTimes() const = 0;

  virtual Outcome MakeDirectory(const std::string& path) = 0;
  virtual Outcome RemoveDirectory(const std::string& path) = 0;
  virtual Outcome RemoveFile(const std::string& path) = 0;
  /// Removes files, one after another, and tells of each in turn; false from `each` to end it.
  /// Not Done only where it ended before the last, and then as the one it ended at.
  virtual Outcome RemoveFiles(std::span<const std::string> paths,
                              const std::function<bool(std::size_t, const Outcome&)>& each) = 0;
  /// Changes permissions, one entry after another, and tells of each in turn as RemoveFiles does.
  /// Where a link stands the server changes what it leads to. Refused where the server cannot
  /// change any, and then it ends with the first.
  virtual Outcome ChangeModes(std::span<const ModeChange> changes,
                              const std::function<bool(std::size_t, const Outcome&)>& each) = 0;
  virtual Outcome Rename(const std::string& from, const std::string& to) = 0;

  /// Opens a file for reading from `offset` on.
  virtual Outcome OpenForReading(const std::string& path, std::int64_t offset,
                                 std::unique_ptr<RemoteFile>& file) = 0;
  /// Opens a file for writing from `offset` on, where so much of it is there; with 0 what was there
  /// is replaced. Refused where the server cannot begin at an offset.
  virtual Outcome OpenForWriting(const std::string& path, std::int64_t offset,
                                 std::unique_ptr<RemoteFile>& file) = 0;

  /// The strongest checksum that the server makes of a file; None where it makes none. Once
  /// connected.
  [[nodiscard]] virtual DigestKind OffersDigest() const = 0;
  /// That checksum of a file of about `size` bytes, as bytes. Takes as long as the server needs to
  /// read the file.
  virtual Outcome Checksum(const std::string& path, std::int64_t size, DigestKind kind,
                           std::string& digest) = 0;

  /// The connection is gone, and how.
  [[nodiscard]] virtual bool IsLost() const = 0;
  [[nodiscard]] virtual const Loss& HowLost() const = 0;
  /// Whether the connection stands. Takes note of what the server has done meanwhile, such as
  /// closing it, without asking the server.
  [[nodiscard]] virtual bool IsAlive() = 0;
  /// Shows the server that this end is still there.
  virtual Outcome KeepAlive() = 0;
  /// How many commands the server has answered so far, on all connections; a good-bye is none.
  [[nodiscard]] virtual std::uint64_t Answers() const = 0;

  /// Any thread: ends the connection for good, without a word to the server; every blocked call
  /// returns soon.
  virtual void Close() = 0;
  /// Any thread: what is under way, and all that is begun before Resume, ends as Cancelled soon;
  /// the connection stays.
  virtual void Interrupt() = 0;
  /// Any thread: takes Interrupt back.
  virtual void Resume() = 0;

 private:
  friend class EngineLease;
  std::mutex lease_;
};

/// Whoever works with a session holds its lease; the next one waits here. It is the only lock that
/// is held across network calls. Closing the session makes the holder let go soon.
class EngineLease {
 public:
  explicit EngineLease(RemoteSession& session) : hold_(session.lease_) {}
  /// Waits until `cancelled` is true at most; whether it holds the lease then, the object tells.
  EngineLease(RemoteSession& session, const std::atomic<bool>& cancelled)
      : hold_(session.lease_, std::try_to_lock) {
    constexpr std::chrono::milliseconds kStep(20);
    for (; !hold_ && !cancelled; (void)hold_.try_lock()) std::this_thread::sleep_for(kStep);
  }
  [[nodiscard]] explicit operator bool() const { return hold_.owns_lock(); }

 private:
  std::unique_lock<std::mutex> hold_;
};

}  // namespace corvane
