#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "net/NLAddress.h"

namespace corvane {

/// A name lookup that can be given up. The resolver itself cannot be interrupted, so it runs on a
/// thread of its own that is left behind when nobody waits for it any more.
class NLLookup {
 public:
  /// Starts the lookup. Throws NLException when no thread can be started.
  NLLookup(const std::string& host, std::uint16_t port);

  /// Waits for all addresses of the host. Throws what NLAddress::all throws, or an NLException with
  /// the message "Lookup cancelled" once cancel was called.
  [[nodiscard]] std::vector<NLAddress> get();

  /// Any thread: makes get() return at once.
  void cancel();

 private:
  struct State;
  std::shared_ptr<State> state_;
};

}  // namespace corvane
