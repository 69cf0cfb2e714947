#include "remote/UserQuestion.h"

#include <chrono>
#include <utility>

namespace corvane {

UserQuestion::Answer UserQuestion::Wait(const std::function<bool()>& goOn) {
  constexpr std::chrono::milliseconds kSlice(50);
  for (;;) {
    {
      const MutexLock lock(lock_);
      if (!answer_) (void)changed_.WaitUntil(lock_, std::chrono::steady_clock::now() + kSlice);
      if (answer_) return *answer_;
    }
    if (!goOn()) Give(Answer::No);
  }
}

std::string UserQuestion::Text() const {
  const MutexLock lock(lock_);
  return text_;
}

void UserQuestion::Give(Answer answer, std::string text) {
  std::function<void()> then;
  {
    const MutexLock lock(lock_);
    if (answer_) return;
    answer_ = answer;
    text_ = std::move(text);
    then = std::exchange(whenOver_, {});
    changed_.NotifyAll();
  }
  if (then) then();
}

void UserQuestion::WhenOver(std::function<void()> then) {
  {
    const MutexLock lock(lock_);
    if (!answer_) {
      whenOver_ = std::move(then);
      return;
    }
  }
  then();
}

}  // namespace corvane
