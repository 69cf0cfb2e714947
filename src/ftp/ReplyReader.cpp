#include "ftp/ReplyReader.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <utility>

#include "ftp/FtpFailure.h"
#include "net/Stream.h"

namespace corvane {
namespace {

constexpr char kLineEnd = '\n';
constexpr char kOtherLineEnd = static_cast<char>(0xEC);
constexpr std::string_view kSpecial = "\r\n\xEC";
constexpr long kPatience = 700;  // milliseconds in which what belongs together arrives

bool HasCode(std::string_view line) {
  const auto digit = [&](std::size_t i) { return line[i] >= '0' && line[i] <= '9'; };
  return line.size() >= 3 && digit(0) && digit(1) && digit(2);
}

// "220 Ready", or the code alone.
bool IsLast(std::string_view line) {
  constexpr std::array kEnds = {' ', '\t', kLineEnd, kOtherLineEnd};
  return line.size() == 3 || std::ranges::find(kEnds, line[3]) != kEnds.end();
}

[[noreturn]] void Fail(Text why, Outcome::Trouble trouble = Outcome::Trouble::Other) {
  throw FtpFailure{{Outcome::Kind::Lost, 0, std::move(why), {}, trouble}};
}

}  // namespace

std::string_view WithoutLineEnd(std::string_view text) {
  while (text.ends_with('\n') || text.ends_with(' ')) text.remove_suffix(1);
  return text;
}

std::optional<std::int64_t> Reply::FileStatus() const {
  constexpr int kFileStatus = 213;
  if (code != kFileStatus) return std::nullopt;
  const std::size_t digits = std::min(lastText.find_first_not_of(' '), lastText.size());
  std::int64_t value = -1;
  std::from_chars(lastText.data() + digits, lastText.data() + lastText.size(), value);
  return value >= 0 ? std::optional(value) : std::nullopt;
}

std::optional<Reply> ReplyReader::Read(const std::function<void(std::string_view)>& onLine) {
  for (;;) {
    const std::optional<std::string> line = ReadLine();
    if (!line) return std::nullopt;
    onLine(*line);
    if (auto reply = TakeReply(*line)) return reply;
  }
}

std::optional<Reply> ReplyReader::ReadUnasked(const std::function<void(std::string_view)>& onLine) {
  while (begun_ || !line_.empty() || IsPending(0)) {
    const std::optional<std::string> line = ReadLine();
    if (!line) return std::nullopt;
    onLine(*line);
    if (auto reply = TakeReply(*line)) return reply;
  }
  length_ = 0;
  return std::nullopt;
}

// The reply that the line ends.
std::optional<Reply> ReplyReader::TakeReply(const std::string& line) {
  length_ += line.size();
  if (length_ > kMaxReply) Fail(Text("The server's reply is too long"));
  if (!TakeLine(line)) return std::nullopt;
  speaksFtp_ = true;
  begun_ = false;
  length_ = 0;
  opening_.clear();
  return std::exchange(reply_, {});
}

// A line without a code before a reply belongs to none and is passed over.
bool ReplyReader::TakeLine(const std::string& line) {
  const bool hasCode = HasCode(line);
  const bool opens = hasCode && line.size() > 3 && line[3] == '-';
  if (!begun_ && !opens && !(hasCode && IsLast(line))) return false;
  if (!begun_) std::from_chars(line.data(), line.data() + 3, reply_.code);
  if (!begun_ && opens) opening_ = line.substr(0, 3);
  begun_ = true;
  reply_.text += line;
  reply_.lastText = line.size() > 4 ? line.substr(4) : std::string();
  // Free text inside a reply of several lines may well begin with a number; only the reply's own
  // code ends it.
  return opening_.empty() || (line.starts_with(opening_) && IsLast(line));
}

std::optional<std::string> ReplyReader::ReadLine() {
  for (;;) {
    while (next_ < ahead_.size()) {
      const std::string_view rest = std::string_view(ahead_).substr(next_);
      const std::string_view plain = rest.substr(0, rest.find_first_of(kSpecial));
      line_ += plain;
      next_ += plain.size();
      if (line_.size() > kMaxLine) Fail(Text("A line of the server's reply is too long"));
      if (next_ == ahead_.size()) break;
      const char c = ahead_[next_];
      // The byte ends a line where nothing follows it; elsewhere it is part of a character.
      if (c == kOtherLineEnd && next_ + 1 == ahead_.size() && Fill(kPatience) != Came::Bytes) {
        ++next_;
        return std::exchange(line_, {}) + c;
      }
      ++next_;
      if (c == '\r') continue;
      line_.push_back(c);
      if (c == kLineEnd) return std::exchange(line_, {});
    }
    if (!AwaitMore()) return std::nullopt;
  }
}

bool ReplyReader::AwaitMore() {
  // A server that has only ever said what is no reply has a moment to go on.
  const bool strange = !speaksFtp_ && length_ > 0 && !begun_;
  switch (Fill(strange ? std::min(silenceLimit, kPatience) : silenceLimit)) {
    case Came::Bytes: return true;
    case Came::End:
      Fail(strange ? Text("The server does not speak FTP")
                   : Text("The server closed the connection"));
    case Came::Nothing: break;
  }
  if (interrupted_) return false;
  if (strange) Fail(Text("The server does not speak FTP"));
  Fail(Text("The server does not answer"), Outcome::Trouble::NoAnswer);
}

ReplyReader::Came ReplyReader::Fill(long limit) {
  using std::chrono::milliseconds;
  using std::chrono::steady_clock;
  constexpr long kSlice = 50;
  const auto deadline = steady_clock::now() + milliseconds(limit);
  do {
    const auto now = steady_clock::now();
    if (!interrupted_) hurry_.reset();
    if (interrupted_ && !hurry_) hurry_ = now + milliseconds(kPatience);
    if (now >= std::min(deadline, hurry_.value_or(deadline))) return Came::Nothing;
  } while (!stream_.wait(kSlice));
  std::array<char, 4096> block{};
  const std::size_t count = stream_.read(block);
  if (count == 0) return Came::End;
  ahead_.erase(0, next_);
  next_ = 0;
  ahead_.append(block.data(), count);
  return Came::Bytes;
}

bool ReplyReader::IsPending(long milliseconds) {
  return next_ < ahead_.size() || stream_.wait(milliseconds);
}

}  // namespace corvane
