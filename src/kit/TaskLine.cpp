#include "kit/TaskLine.h"

#include <deque>
#include <utility>

#include "kit/Background.h"
#include "kit/Mutex.h"

namespace corvane {

struct TaskLine::State {
  explicit State(const std::string& itsName) : name(itsName) {}

  void Run() EXCLUDES(lock) {
    for (;;) {
      std::function<void()> task;
      {
        const MutexLock hold(lock);
        if (tasks.empty()) {
          runs = false;
          changed.NotifyAll();
          return;
        }
        task = std::move(tasks.front());
        tasks.pop_front();
      }
      try {
        task();
      } catch (...) {  // the tasks behind it are not to wait for ever
      }
    }
  }

  const std::string name;
  Mutex lock;
  Condition changed;
  std::deque<std::function<void()>> tasks GUARDED_BY(lock);
  bool runs GUARDED_BY(lock) = false;
};

TaskLine::TaskLine(const std::string& name) : state_(std::make_shared<State>(name)) {}

// Where the system has no thread to give, what waits is run with what comes next.
void TaskLine::Add(std::function<void()> task) {
  const MutexLock hold(state_->lock);
  state_->tasks.push_back(std::move(task));
  if (state_->runs) return;
  state_->runs = Background::Start(state_->name, [state = state_] { state->Run(); });
}

bool TaskLine::Wait(std::chrono::milliseconds limit) {
  const auto end = std::chrono::steady_clock::now() + limit;
  const MutexLock hold(state_->lock);
  while (state_->runs) {
    if (!state_->changed.WaitUntil(state_->lock, end)) break;
  }
  return !state_->runs;
}

}  // namespace corvane
