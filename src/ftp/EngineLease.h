#pragma once

#include <mutex>

namespace corvane {

class MFtp;

/// Whoever works with an engine holds its lease; the next one waits here. It is the only lock that
/// is held across network calls. Closing the engine makes the holder let go soon.
class EngineLease {
 public:
  explicit EngineLease(MFtp& engine);

 private:
  std::unique_lock<std::mutex> hold_;
};

}  // namespace corvane
