#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <optional>

#include "kit/Mutex.h"
#include "remote/Outcome.h"
#include "remote/OwnerUi.h"
#include "remote/RemoteSession.h"
#include "workers/SessionPool.h"
#include "workers/SessionTurn.h"

namespace corvane {

/// One connection of a walk: a session of the pool, connected when it is first used, or that of a
/// browser window, which is borrowed for a piece of work at a time. One thread; Stop from any.
class WalkLine {
 public:
  explicit WalkLine(SessionPool::Lease lease)
      : lease_(std::move(lease)), session_(lease_.Session()) {}
  /// The window's; its session may be in use.
  explicit WalkLine(std::shared_ptr<RemoteSession> session) : session_(std::move(session)) {
    turn_.emplace(*session_);
  }

  /// Carries `work` out. Busy where a window's session is in use for too long, Lost where the
  /// connection is gone.
  Outcome With(const std::function<Outcome(RemoteSession&)>& work);
  /// Lets go of the session.
  void Return() EXCLUDES(lock_);
  /// Any thread: what is under way ends soon, and nothing more is carried out.
  void Stop() EXCLUDES(lock_);

  [[nodiscard]] bool IsWindows() const { return turn_.has_value(); }
  /// Any thread: whether it has connected once.
  [[nodiscard]] bool IsConnected() const { return connected_; }

 private:
  Outcome Borrow(const std::function<Outcome(RemoteSession&)>& work);

  SessionPool::Lease lease_;
  const std::shared_ptr<RemoteSession> session_;
  std::optional<SessionTurn> turn_;  // of a window's
  std::atomic<bool> connected_{false};
  std::atomic<bool> stopped_{false};
  Mutex lock_;
  Condition closed_;
  bool closing_ GUARDED_BY(lock_) = false;   // the session is being closed
  bool returned_ GUARDED_BY(lock_) = false;  // the session is not this line's any more
};

/// What sessions of a walk tell the window for which it walks: questions and the dialogue; the
/// window's own connection is not theirs.
class WalkOwner final : public OwnerUi {
 public:
  explicit WalkOwner(std::shared_ptr<OwnerUi> window) : window_(std::move(window)) {}

  bool PostMessage(Message /*message*/) override { return true; }
  bool PlaySound(Sound /*sound*/) override { return true; }
  bool SetStatus(const Text& /*text*/) override { return true; }
  bool Ask(const std::shared_ptr<UserQuestion>& question) override {
    return window_->Ask(question);
  }
  bool AppendLog(std::string_view line) override { return window_->AppendLog(line); }

 private:
  const std::shared_ptr<OwnerUi> window_;
};

}  // namespace corvane
