#pragma once

#include <atomic>

namespace corvane {

/// The networking layer's tracing for developers; off until somebody switches it on. Any thread.
class NLDebug {
 public:
  NLDebug() = delete;

  /// Prints a hex dump to standard output.
  static void dump(const char* data, unsigned long length, const char* title);
  /// Prints one trace line to standard error; null prints as an empty text.
  static void print(const char* text);
  /// Switches tracing on where the environment variable CORVANE_NET_DEBUG is set, neither empty
  /// nor "0". What was sent is shown as it is, passwords included.
  static void switchOnFromEnvironment();

  static std::atomic<bool> m_on;
};

}  // namespace corvane
