#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <thread>

#include "prefs/PREF.h"

namespace corvane {

/// How often listeners look when POLL_INTERVAL says nothing.
inline constexpr std::chrono::microseconds kPollInterval = std::chrono::seconds(9);
/// What POLL_INTERVAL's text asks for; nothing when it is no positive decimal number.
[[nodiscard]] std::optional<std::chrono::microseconds> ParsePollInterval(const char* text);

/// Looks at a set's file now and then, and calls the listener when it has changed.
class PrefListener {
 public:
  /// Changes count from now on. Throws std::system_error when there can be no thread.
  PrefListener(PREFSet* set, const std::string& path, std::chrono::microseconds interval,
               PREFListener listener, void* cookie);
  /// Waits for a call that is under way, so that the cookie may go afterwards; not when a listener
  /// ends itself or another one from its call. No lock may be held that a listener might need.
  ~PrefListener();
  PrefListener(const PrefListener&) = delete;
  PrefListener& operator=(const PrefListener&) = delete;

 private:
  struct Watch;

  std::shared_ptr<Watch> watch_;  ///< the thread's own too, which may outlive this object
  std::thread thread_;
};

}  // namespace corvane
