#include "kit/Looper.h"

#include <optional>
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

void Looper::Loop() {
  for (;;) {
    std::optional<Message> next;
    {
      const MutexLock lock(lock_);
      while (queue_.empty() && !quitting_) wake_.Wait(lock_);
      if (quitting_) return;
      next = std::move(queue_.front());
      queue_.pop_front();
    }
    MessageReceived(*next);
  }
}

}  // namespace corvane
