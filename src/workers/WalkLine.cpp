#include "workers/WalkLine.h"

#include <chrono>
#include <thread>

namespace corvane {
namespace {

using Kind = Outcome::Kind;
using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds kPatience(500);  // with a session that is in use
constexpr std::chrono::milliseconds kStep(20);

}  // namespace

Outcome WalkLine::With(const std::function<Outcome(RemoteSession&)>& work) {
  if (stopped_) return Outcome::Cancelled();
  if (IsWindows()) return Borrow(work);
  if (session_->IsLost() || !session_->IsAlive()) {
    connected_ = false;
    if (Outcome outcome = session_->Connect(); !outcome.IsDone())
      return stopped_ ? Outcome::Cancelled() : outcome;
  }
  connected_ = true;
  const Outcome outcome = work(*session_);
  return stopped_ && !outcome.IsDone() ? Outcome::Cancelled() : outcome;
}

// What the user asks of the window meanwhile waits for the session too, and looks for it every now
// and then.
Outcome WalkLine::Borrow(const std::function<Outcome(RemoteSession&)>& work) {
  const std::atomic<bool> atOnce{true};
  turn_->Begin();
  const Clock::time_point late = Clock::now() + kPatience;
  for (;;) {
    const EngineLease lease(*session_, atOnce);
    Outcome outcome{Kind::Busy, 0, Text("The connection is in use.")};
    if (lease) {
      outcome = Outcome::Cancelled();
      if (!stopped_ && turn_->Work()) {
        connected_ = session_->IsAlive();
        outcome = connected_ ? work(*session_) : Outcome{Kind::Lost, 0, session_->HowLost().why};
      }
    }
    if (lease || stopped_ || turn_->Stopped() || Clock::now() > late) {
      connected_ = connected_ && lease;
      turn_->End();
      return stopped_ ? Outcome::Cancelled() : outcome;
    }
    std::this_thread::sleep_for(kStep);
  }
}

void WalkLine::Return() {
  {
    const MutexLock hold(lock_);
    while (closing_) closed_.Wait(lock_);
    returned_ = true;
  }
  lease_.GiveBack();
}

// One of the pool that is closed in the middle is of no use to anybody else.
void WalkLine::Stop() {
  stopped_ = true;
  if (turn_) return turn_->Stop();
  {
    const MutexLock hold(lock_);
    if (returned_ || closing_) return;
    closing_ = true;
  }
  session_->Close();
  const MutexLock hold(lock_);
  closing_ = false;
  closed_.NotifyAll();
}

}  // namespace corvane
