#include "ftp/ReplyReader.h"

#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <thread>

#include "net/NLEndpoint.h"
#include "net/NLException.h"

namespace corvane {
namespace {

constexpr char kLineEnd = '\n';
constexpr char kOtherLineEnd = static_cast<char>(0xEC);
constexpr long kPatience = 700;  // milliseconds to learn what follows a byte that may end a line

bool IsContinuation(char c) {
  return (static_cast<unsigned char>(c) & 0xC0) == 0x80;
}

bool HasCode(std::string_view line) {
  auto digit = [&](std::size_t i) { return line[i] >= '0' && line[i] <= '9'; };
  return line.size() >= 3 && digit(0) && digit(1) && digit(2);
}

bool EndsReply(std::string_view line) {
  return line.size() > 3 && line[3] == ' ' && line[0] != ' ';
}

}  // namespace

int ReplyCode(std::string_view line, int otherwise) {
  const std::size_t start = line.find_first_not_of(" \t");
  if (start == std::string_view::npos) return otherwise;
  int code = 0;
  const auto [end, error] = std::from_chars(line.data() + start, line.data() + line.size(), code);
  return error == std::errc() ? code : otherwise;
}

Reply ReplyReader::Read(const std::function<void(std::string_view)>& onLine) {
  Reply reply;
  untouched_ = true;
  gaveUp_ = false;
  std::string opening;  // "230" while the reply is one that began with "230-"
  for (bool first = true;; first = false) {
    const std::string line = ReadLine();
    onLine(line);
    reply.text += line;
    reply.code = ReplyCode(line, reply.code);
    reply.lastText = line.size() > 4 ? line.substr(4) : std::string();
    if (reply.text.size() > kMaxReply)
      throw NLException("ReplyReader::Read", "The server's reply is too long", &control_);
    if (first && HasCode(line) && line[3] == '-') {
      opening = line.substr(0, 3);
      continue;
    }
    // Free text inside such a reply may well have a blank in fourth place; only its own code ends
    // it.
    if (!opening.empty() ? line.starts_with(opening) && EndsReply(line) : EndsReply(line))
      return reply;
    if (first && HasCode(line) && (line.size() == 3 || line[3] == kLineEnd)) return reply;
    if (first && !HasCode(line))
      throw NLException("ReplyReader::Read", "The server does not speak FTP", &control_);
  }
}

std::string ReplyReader::ReadLine() {
  std::string line;
  for (;;) {
    const char c = ReadByte();
    if (c == '\r') continue;
    line.push_back(c);
    if (c == kLineEnd || (c == kOtherLineEnd && !BeginsCharacter())) return line;
    if (line.size() > kMaxLine)
      throw NLException("ReplyReader::ReadLine", "A line of the server's reply is too long",
                        &control_);
  }
}

void ReplyReader::HurryWhen(const std::atomic<bool>* cancelled, long limit) {
  cancelled_ = cancelled;
  limit_ = limit;
}

void ReplyReader::AwaitByte() {
  constexpr long kSlice = 50;
  auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(limit_);
  bool hurried = false;
  while (!control_.isDataPending(kSlice)) {
    const auto now = std::chrono::steady_clock::now();
    if (!hurried && *cancelled_) {
      hurried = true;
      deadline = std::min(deadline, now + std::chrono::milliseconds(kPatience));
    }
    if (now < deadline) continue;
    gaveUp_ = hurried && untouched_;
    throw NLException("ReplyReader::AwaitByte", "The server does not answer", &control_);
  }
}

char ReplyReader::ReadByte() {
  char c = 0;
  if (cancelled_ != nullptr) AwaitByte();
  try {
    const bool came = control_.recv(&c, 1, 0) > 0;
    untouched_ = false;
    if (came) return c;
  } catch (const NLException&) {
    if (control_.lastError != ETIMEDOUT) throw;
    throw NLException("ReplyReader::ReadByte", "The server does not answer", &control_);
  }
  throw NLException("ReplyReader::ReadByte", "The server closed the connection", &control_);
}

// Looks at the two bytes behind an 0xEC without taking them.
bool ReplyReader::BeginsCharacter() {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(kPatience);
  while (control_.isDataPending(kPatience)) {
    char next[2] = {};
    const long count = control_.recv(next, sizeof next, MSG_PEEK);
    if (count < 1 || !IsContinuation(next[0])) return false;
    if (count == 2) return IsContinuation(next[1]);
    if (std::chrono::steady_clock::now() > deadline) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  return false;
}

}  // namespace corvane
