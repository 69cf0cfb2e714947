#pragma once

#include <atomic>
#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

namespace corvane {

class NLEndpoint;

/// One complete reply of a server.
struct Reply {
  int code = 0;
  std::string text;      ///< all its lines, carriage returns removed, line feeds kept
  std::string lastText;  ///< its last line from the fifth character on, line feed included
};

/// Reads replies from a control connection, one byte a call, so that nothing behind a reply is ever
/// taken with it (RFC 959, 4.2). Knows nothing of commands.
class ReplyReader {
 public:
  static constexpr std::size_t kMaxLine = std::size_t{64} * 1024;
  static constexpr std::size_t kMaxReply = std::size_t{1024} * 1024;

  /// `control` is not owned.
  explicit ReplyReader(NLEndpoint& control) : control_(control) {}

  /// Waits for one reply; `onLine` sees each line with its end as it comes. Throws NLException when
  /// the connection ends or fails, when the reply is too long, or when it is no FTP reply at all.
  [[nodiscard]] Reply Read(const std::function<void(std::string_view)>& onLine);

  /// From now on Read waits with an eye on `cancelled`: `limit` milliseconds for a byte, and only a
  /// moment once it is true. Null ends that.
  void HurryWhen(const std::atomic<bool>* cancelled, long limit);
  /// Whether the last Read threw because it was hurried, with nothing of the reply taken.
  [[nodiscard]] bool GaveUp() const { return gaveUp_; }

 private:
  [[nodiscard]] std::string ReadLine();
  [[nodiscard]] char ReadByte();
  void AwaitByte();
  [[nodiscard]] bool BeginsCharacter();

  NLEndpoint& control_;
  const std::atomic<bool>* cancelled_ = nullptr;
  long limit_ = 0;
  bool untouched_ = true;  // nothing of the reply was taken yet
  bool gaveUp_ = false;
};

/// The number at the start of a reply's line, or nothing where there is none.
[[nodiscard]] int ReplyCode(std::string_view line, int otherwise);

}  // namespace corvane
