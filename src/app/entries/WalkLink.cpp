#include "app/entries/WalkLink.h"

#include <QElapsedTimer>
#include <utility>

#include "app/shared/GuiThread.h"

namespace corvane {
namespace {

constexpr qint64 kTurn = 10;  // milliseconds in which rows are added

}  // namespace

bool WalkLink::Found(std::vector<FoundEntry> entries) {
  if (closed_) return false;
  const MutexLock hold(lock_);
  found_.push_back(std::move(entries));
  if (!std::exchange(awake_, true)) Wake();
  return true;
}

void WalkLink::Ended(const WalkEnd& end) {
  const MutexLock hold(lock_);
  end_ = std::make_unique<WalkEnd>(end);
  if (!std::exchange(awake_, true)) Wake();
}

void WalkLink::Wake() {
  OnGuiThread([self = shared_from_this()] { self->Deliver(); });
}

void WalkLink::Deliver() {
  QElapsedTimer turn;
  turn.start();
  for (;;) {
    std::vector<FoundEntry> found;
    std::unique_ptr<WalkEnd> end;
    {
      const MutexLock hold(lock_);
      if (!found_.empty() && !closed_) {
        if (turn.elapsed() >= kTurn) return Wake();
        found = std::move(found_.front());
        found_.pop_front();
      } else {
        end = std::move(end_);
        awake_ = false;
      }
    }
    if (closed_) return;
    if (found.empty()) {
      if (end && calls_.ended) calls_.ended(*end);
      return;
    }
    if (calls_.found) calls_.found(std::move(found));
  }
}

}  // namespace corvane
