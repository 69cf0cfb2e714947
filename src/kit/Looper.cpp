#include "kit/Looper.h"

#include <utility>

#include "kit/Background.h"

namespace corvane {

Looper::Looper(std::string name) : name_(std::move(name)) {}

Looper::~Looper() = default;

bool Looper::Run() {
  return Background::Start(name_, [self = shared_from_this()] { self->Loop(); });
}

bool Looper::PostMessage(Message message) {
  const std::uint32_t what = message.what;
  {
    const MutexLock lock(lock_);
    if (quitting_ || queue_.size() >= kQueueLength) return false;
    queue_.push_back(std::move(message));
    wake_.NotifyOne();
  }
  Arrived(what);
  return true;
}

bool Looper::IsWaitedFor() const {
  const MutexLock lock(lock_);
  return !queue_.empty();
}

void Looper::Quit() {
  {
    const MutexLock lock(lock_);
    quitting_ = true;
    queue_.clear();
    wake_.NotifyAll();
  }
  Interrupt();
}

bool Looper::Quitting() const {
  const MutexLock lock(lock_);
  return quitting_;
}

std::optional<Message> Looper::Await(std::chrono::milliseconds patience) {
  const auto deadline = std::chrono::steady_clock::now() + patience;
  const MutexLock lock(lock_);
  while (queue_.empty() && !quitting_) {
    if (patience.count() == 0) {
      wake_.Wait(lock_);
    } else if (!wake_.WaitUntil(lock_, deadline)) {
      break;
    }
  }
  if (queue_.empty() || quitting_) return std::nullopt;
  Message next = std::move(queue_.front());
  queue_.pop_front();
  return next;
}

void Looper::Loop() {
  while (!Quitting()) {
    const std::optional<Message> next = Await(Patience());
    if (next) {
      MessageReceived(*next);
    } else if (!Quitting()) {
      Idle();
    }
  }
}

}  // namespace corvane
