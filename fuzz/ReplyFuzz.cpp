// Whatever a server says, in whatever pieces: reading ends, every reply is made of whole lines, and
// the replies are the same as those of the bytes in one piece. The first byte says how long the
// pieces are.
#include <algorithm>
#include <cstdint>
#include <cstdlib>

#include "ftp/FtpFailure.h"
#include "ftp/ReplyReader.h"
#include "net/Stream.h"

namespace {

using namespace corvane;

class Pieces final : public Stream {
 public:
  Pieces(std::string_view bytes, std::size_t seed) : bytes_(bytes), seed_(seed) {}
  std::size_t read(std::span<char> buffer) override {
    const std::size_t most = seed_ == 0 ? buffer.size() : seed_ % 31 + 1;
    seed_ = seed_ == 0 ? 0 : seed_ * 5 + 3;
    const std::size_t count = bytes_.copy(buffer.data(), std::min(most, buffer.size()));
    bytes_.remove_prefix(count);
    return count;
  }
  void write(std::span<const char>) override {}
  bool wait(long) override { return true; }
  void finish() override {}
  void abort() override {}

 private:
  std::string_view bytes_;
  std::size_t seed_;
};

// With `unasked` every other reply is read as one that nobody asked for.
std::vector<Reply> Read(std::string_view bytes, std::size_t seed, bool unasked) {
  Pieces stream(bytes, seed);
  const std::atomic<bool> interrupted = false;
  ReplyReader reader(stream, interrupted);
  std::vector<Reply> replies;
  try {
    for (std::size_t i = 0;; ++i) {
      const auto reply =
          unasked && i % 2 != 0 ? reader.ReadUnasked([](auto) {}) : reader.Read([](auto) {});
      if (!reply || reply->code < 0 || reply->code > 999) std::abort();
      if (!reply->text.ends_with(reply->lastText) || reply->text.find('\r') != std::string::npos)
        std::abort();
      replies.push_back(*reply);
    }
  } catch (const FtpFailure& failure) {
    if (failure.outcome.IsDone()) std::abort();
  }
  return replies;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::string_view bytes(reinterpret_cast<const char*>(data) + 1, size - 1);
  (void)Read(bytes, data[0], true);
  const auto same = [](const Reply& one, const Reply& other) {
    return one.code == other.code && one.text == other.text && one.lastText == other.lastText;
  };
  const std::vector<Reply> whole = Read(bytes, 0, false);
  if (!std::ranges::equal(whole, Read(bytes, data[0] + 1U, false), same)) std::abort();
  return 0;
}
