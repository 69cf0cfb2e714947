#pragma once

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "remote/Waits.h"

namespace corvane {

class Stream;

/// The text without the line ends and blanks that it ends with.
[[nodiscard]] std::string_view WithoutLineEnd(std::string_view text);

/// One complete reply of a server (RFC 959, 4.2).
struct Reply {
  int code = 0;
  std::string text{};      ///< all its lines, carriage returns removed, line feeds kept
  std::string lastText{};  ///< its last line from the fifth character on, line feed included

  /// Whether it is none to its command, of which nothing is known then.
  [[nodiscard]] bool IsNone() const { return code == 0; }
  /// Whether another reply follows to the command.
  [[nodiscard]] bool IsPreliminary() const { return code >= 100 && code < 200; }
  [[nodiscard]] bool IsCompletion() const { return code >= 200 && code < 300; }
  /// What its last line says.
  [[nodiscard]] std::string_view Words() const { return WithoutLineEnd(lastText); }
  /// The number of a 213 reply (RFC 3659, 4.1); nothing of any other.
  [[nodiscard]] std::optional<std::int64_t> FileStatus() const;
};

/// Reads replies from a stream, which it reads ahead into a buffer of its own. Knows nothing of
/// commands. Throws FtpFailure when the connection ends or what comes is no reply, and what the
/// stream throws.
class ReplyReader {
 public:
  static constexpr std::size_t kMaxLine = std::size_t{64} * 1024;
  static constexpr std::size_t kMaxReply = std::size_t{1024} * 1024;

  /// Neither is owned. Once `interrupted` is true the server is waited for only a moment in all,
  /// however little it says at a time.
  ReplyReader(Stream& stream, const std::atomic<bool>& interrupted)
      : stream_(stream), interrupted_(interrupted) {}

  /// How long a silent server is waited for, in milliseconds.
  long silenceLimit = Waits().reply;

  /// Waits for one reply; `onLine` sees each line with its end as it comes. Nothing when the wait
  /// was interrupted: what has come of the reply is kept, and the next call goes on with it.
  [[nodiscard]] std::optional<Reply> Read(const std::function<void(std::string_view)>& onLine);
  /// Reads a reply that has come, or has begun to come, unasked; nothing where there is none. Lines
  /// that belong to no reply are passed over.
  [[nodiscard]] std::optional<Reply> ReadUnasked(
      const std::function<void(std::string_view)>& onLine);

  /// Whether bytes are unread that have been taken from the stream already.
  [[nodiscard]] bool IsAhead() const { return next_ < ahead_.size() || !line_.empty() || begun_; }
  /// Whether something is unread, or comes within `milliseconds`; the end counts.
  [[nodiscard]] bool IsPending(long milliseconds);

 private:
  enum class Came { Bytes, Nothing, End };

  [[nodiscard]] std::optional<Reply> TakeReply(const std::string& line);
  [[nodiscard]] std::optional<std::string> ReadLine();
  /// Takes a line into the reply; true when that ended it.
  [[nodiscard]] bool TakeLine(const std::string& line);
  [[nodiscard]] Came Fill(long limit);
  /// Waits for more of the line; false when interrupted.
  [[nodiscard]] bool AwaitMore();

  Stream& stream_;
  const std::atomic<bool>& interrupted_;
  std::string ahead_;     // read from the stream, not yet from here
  std::size_t next_ = 0;  // of ahead_
  std::string line_;      // what has come of a line
  Reply reply_;           // what has come of a reply
  std::string opening_;   // "230" while the reply is one that began with "230-"
  std::size_t length_ = 0;
  bool begun_ = false;
  bool speaksFtp_ = false;                                      // a whole reply has come
  std::optional<std::chrono::steady_clock::time_point> hurry_;  // when an interrupted wait ends
};

}  // namespace corvane
