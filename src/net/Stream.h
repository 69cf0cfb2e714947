#pragma once

#include <cstddef>
#include <span>

namespace corvane {

/// Bytes in both directions, whatever carries them. One thread at a time works with a stream;
/// abort() may be called from any thread and makes a blocked call return. Failing calls throw
/// NLException (net/NLException.h).
class Stream {
 public:
  virtual ~Stream() = default;

  /// Reads what is there, at least one byte; 0 at the end of the stream.
  [[nodiscard]] virtual std::size_t read(std::span<char> buffer) = 0;
  /// Writes all bytes.
  virtual void write(std::span<const char> bytes) = 0;
  /// Whether there is something to read, the end included, within so many milliseconds; 0 looks
  /// without waiting.
  [[nodiscard]] virtual bool wait(long milliseconds) = 0;
  /// Tells the peer that nothing more will be written. Reading goes on.
  virtual void finish() = 0;
  /// Ends the stream for good.
  virtual void abort() = 0;
};

}  // namespace corvane
