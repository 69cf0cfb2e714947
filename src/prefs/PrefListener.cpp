#include "prefs/PrefListener.h"

#include <pthread.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <algorithm>
#include <charconv>
#include <cstring>

#include "kit/Mutex.h"

namespace corvane {
namespace {

using std::chrono::microseconds;
using std::chrono::steady_clock;

// Longer pauses than anybody waits for would overflow the clock.
constexpr microseconds kLongest = std::chrono::hours(24 * 365);

constexpr int kNiceness = 5;

// What differs once a file has been written or replaced.
struct Stamp {
  ino_t inode = 0;
  std::int64_t seconds = 0;
  std::int64_t nanoseconds = 0;
  friend bool operator==(const Stamp&, const Stamp&) = default;
};

std::optional<Stamp> StampOf(const std::string& path) {
  struct stat status {};
  if (::stat(path.c_str(), &status) != 0) return std::nullopt;
  return Stamp{status.st_ino, status.st_mtim.tv_sec, status.st_mtim.tv_nsec};
}

// Set in the threads of all listeners.
thread_local bool inListener = false;

}  // namespace

std::optional<microseconds> ParsePollInterval(const char* text) {
  std::int64_t value = 0;
  const char* const end = text + std::strlen(text);
  const auto [stop, error] = std::from_chars(text, end, value);
  if (error != std::errc() || stop != end || value <= 0) return std::nullopt;
  if (value < 4'000) return std::chrono::seconds(value);
  if (value < 500'000) return std::chrono::milliseconds(value);
  return microseconds(value);
}

struct PrefListener::Watch {
  PREFSet* const set;
  const std::string path;
  const microseconds interval;
  const PREFListener listener;
  void* const cookie;
  std::optional<Stamp> last;  // the thread's alone

  Mutex lock{};
  Condition ended{};
  bool listening GUARDED_BY(lock) = true;

  // False as soon as the listener is to end.
  bool Wait() EXCLUDES(lock) {
    const auto deadline = steady_clock::now() + interval;
    const MutexLock hold(lock);
    while (listening && ended.WaitUntil(lock, deadline)) {
    }
    return listening;
  }

  void End() EXCLUDES(lock) {
    const MutexLock hold(lock);
    listening = false;
    ended.NotifyAll();
  }

  void Run() {
    inListener = true;
    ::pthread_setname_np(::pthread_self(), "pref listen");
    ::setpriority(PRIO_PROCESS, 0, kNiceness);  // of this thread alone
    while (Wait()) {
      const auto now = StampOf(path);
      if (!now) return;
      if (now == last) continue;
      last = now;
      listener(set, cookie);
    }
  }
};

PrefListener::PrefListener(PREFSet* set, const std::string& path, microseconds interval,
                           PREFListener listener, void* cookie)
    : watch_(new Watch{set, path, std::min(interval, kLongest), listener, cookie, StampOf(path)}),
      thread_([watch = watch_] { watch->Run(); }) {}

PrefListener::~PrefListener() {
  watch_->End();
  if (inListener) {
    thread_.detach();
  } else {
    thread_.join();
  }
}

}  // namespace corvane
