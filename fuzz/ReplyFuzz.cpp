// Whatever a server says, in whatever pieces: reading ends, and every reply is made of whole lines.
#include <algorithm>
#include <cstdint>
#include <cstdlib>

#include "ftp/FtpFailure.h"
#include "ftp/ReplyReader.h"
#include "net/Stream.h"

namespace {

class Pieces final : public corvane::Stream {
 public:
  Pieces(std::string_view bytes, std::size_t most) : bytes_(bytes), most_(most) {}
  std::size_t read(std::span<char> buffer) override {
    const std::size_t count = bytes_.copy(buffer.data(), std::min(most_, buffer.size()));
    bytes_.remove_prefix(count);
    return count;
  }
  void write(std::span<const char>) override {}
  bool wait(long) override { return true; }
  void finish() override {}
  void abort() override {}

 private:
  std::string_view bytes_;
  std::size_t most_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace corvane;
  Pieces stream({reinterpret_cast<const char*>(data), size}, size == 0 ? 1 : data[0] + 1U);
  const std::atomic<bool> interrupted = false;
  ReplyReader reader(stream, interrupted);
  try {
    for (bool unasked = false;; unasked = !unasked) {
      const auto reply = unasked ? reader.ReadUnasked([](auto) {}) : reader.Read([](auto) {});
      if (!reply || reply->code < 0 || reply->code > 999) std::abort();
      if (!reply->text.ends_with(reply->lastText) || reply->text.find('\r') != std::string::npos)
        std::abort();
    }
  } catch (const FtpFailure& failure) {
    if (failure.outcome.IsDone()) std::abort();
  }
  return 0;
}
