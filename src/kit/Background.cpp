#include "kit/Background.h"

#include <malloc.h>
#include <pthread.h>

#include <exception>
#include <thread>
#include <utility>

#include "kit/Mutex.h"

namespace corvane {
namespace {

struct Counter {
  Mutex lock;
  Condition changed;
  int running GUARDED_BY(lock) = 0;
  std::chrono::steady_clock::time_point trimmed GUARDED_BY(lock);
};

// Never destroyed: a thread may still end while the process runs its last destructors.
Counter& TheCounter() {
  static Counter& counter = *new Counter;
  return counter;
}

void Add(int difference) {
  Counter& counter = TheCounter();
  const MutexLock lock(counter.lock);
  counter.running += difference;
  counter.changed.NotifyAll();
}

/// Whether no thread has given memory back for a while. Others wait while that is done.
bool IsTimeToTrim() {
  constexpr std::chrono::seconds kWhile{2};
  Counter& counter = TheCounter();
  const MutexLock lock(counter.lock);
  const auto now = std::chrono::steady_clock::now();
  if (now < counter.trimmed + kWhile) return false;
  counter.trimmed = now;
  return true;
}

// The C library keeps what a thread has freed for the threads to come, and so a multiple of what is
// in use.
void GiveMemoryBack() {
#ifdef __GLIBC__
  if (IsTimeToTrim()) (void)::malloc_trim(0);
#endif
}

}  // namespace

bool Background::Start(const std::string& name, std::function<void()> work) {
  Add(1);
  try {
    std::thread([label = name.substr(0, 15), own = std::move(work)]() mutable {
      pthread_setname_np(pthread_self(), label.c_str());
      own();
      own = nullptr;  // whoever sees the count drop finds everything released
      GiveMemoryBack();
      Add(-1);
    }).detach();
  } catch (const std::exception&) {
    Add(-1);
    return false;
  }
  return true;
}

int Background::Count() {
  Counter& counter = TheCounter();
  const MutexLock lock(counter.lock);
  return counter.running;
}

bool Background::WaitForNone(std::chrono::milliseconds limit) {
  const auto deadline = std::chrono::steady_clock::now() + limit;
  Counter& counter = TheCounter();
  const MutexLock lock(counter.lock);
  while (counter.running > 0) {
    if (!counter.changed.WaitUntil(counter.lock, deadline)) return counter.running == 0;
  }
  return true;
}

}  // namespace corvane
