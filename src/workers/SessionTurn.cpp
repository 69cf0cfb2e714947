#include "workers/SessionTurn.h"

#include <utility>

#include "remote/RemoteSession.h"

namespace corvane {

void SessionTurn::Begin() {
  const MutexLock hold(lock_);
  state_ = State::Waiting;
  stopped_ = false;
}

bool SessionTurn::Work() {
  const MutexLock hold(lock_);
  if (stopped_) return false;
  state_ = State::Working;
  return true;
}

void SessionTurn::End() {
  const MutexLock hold(lock_);
  if (std::exchange(state_, State::Idle) == State::Working) session_.Resume();
}

void SessionTurn::Stop() {
  const MutexLock hold(lock_);
  if (state_ == State::Idle) return;
  stopped_ = true;
  if (state_ == State::Working) session_.Interrupt();
}

}  // namespace corvane
