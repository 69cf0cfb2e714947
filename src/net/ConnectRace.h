#pragma once

#include <chrono>
#include <cstddef>
#include <span>
#include <vector>

#include "net/NLAddress.h"
#include "util/UniqueFd.h"

namespace corvane {

/// Connects to the addresses of one host, one after another without waiting for each to fail
/// (RFC 8305): the families take turns, an address gets a head start of 250 ms, and the first
/// connection that stands wins. One thread.
class ConnectRace {
 public:
  /// `type` is that of the sockets, `limit` how long each address is waited for.
  ConnectRace(std::span<const NLAddress> addresses, int type, std::chrono::milliseconds limit);

  /// Waits at most so long for something to happen; true once the race is over.
  [[nodiscard]] bool step(std::chrono::milliseconds most);
  /// The connection that won, not blocking; empty where none did.
  [[nodiscard]] UniqueFd takeWinner() { return std::move(winner_); }
  /// Without a winner: the error number that tells most. That a port is closed is told only where
  /// all addresses that can be reached say so.
  [[nodiscard]] int error() const { return error_; }

 private:
  using Clock = std::chrono::steady_clock;
  struct Runner {
    UniqueFd socket;
    Clock::time_point deadline;
  };

  void start(const NLAddress& address);
  void await(std::chrono::milliseconds most);
  /// Whether the runner is done, as the winner or not.
  bool judge(Runner& runner, bool ready);
  void fail(int error);

  const int type_;
  const std::chrono::milliseconds limit_;
  std::vector<NLAddress> addresses_;  // in the order in which they are tried
  std::size_t next_ = 0;              // of them
  Clock::time_point nextStart_{};
  std::vector<Runner> runners_;
  UniqueFd winner_;
  int error_;
};

}  // namespace corvane
