#pragma once

#include <atomic>

#include "kit/Mutex.h"

namespace corvane {

class RemoteSession;

/// One worker's turn at a session that others work with too. What it does in its turn can be
/// stopped from any thread; what comes before and after is not touched.
class SessionTurn {
 public:
  explicit SessionTurn(RemoteSession& session) : session_(session) {}

  /// Something to do has come up, and waits for the session's lease.
  void Begin() EXCLUDES(lock_);
  /// The lease is held. False where it was stopped meanwhile.
  [[nodiscard]] bool Work() EXCLUDES(lock_);
  /// It is done or given up. Called while the lease is held, where it was.
  void End() EXCLUDES(lock_);

  /// Any thread: what is to be done ends soon, and the connection stays. Does nothing between End
  /// and Begin.
  void Stop() EXCLUDES(lock_);
  /// Whether it was stopped, from Begin to the next Begin.
  [[nodiscard]] const std::atomic<bool>& Stopped() const { return stopped_; }

 private:
  enum class State { Idle, Waiting, Working };

  RemoteSession& session_;
  std::atomic<bool> stopped_{false};
  Mutex lock_;
  State state_ GUARDED_BY(lock_) = State::Idle;
};

}  // namespace corvane
