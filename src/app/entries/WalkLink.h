#pragma once

#include <atomic>
#include <deque>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "kit/Mutex.h"
#include "workers/WalkUi.h"

namespace corvane {

/// A walk as its window sees it. Outlives the window: the walk shares it. What was found is handed
/// over once per turn of the event loop, for a bounded time, and the end behind it. Made with
/// std::make_shared.
class WalkLink final : public WalkUi, public std::enable_shared_from_this<WalkLink> {
 public:
  struct Calls {
    std::function<void(std::vector<FoundEntry>)> found{};
    std::function<void(const WalkEnd&)> ended{};
  };

  /// `calls` come on the GUI thread.
  explicit WalkLink(Calls calls) : calls_(std::move(calls)) {}

  /// GUI thread: nothing is called any more. Before what the calls refer to goes.
  void Close() { closed_ = true; }

  bool Found(std::vector<FoundEntry> entries) override EXCLUDES(lock_);
  void Ended(const WalkEnd& end) override EXCLUDES(lock_);

 private:
  void Wake();
  void Deliver() EXCLUDES(lock_);

  std::atomic<bool> closed_{false};
  const Calls calls_;
  Mutex lock_;
  std::deque<std::vector<FoundEntry>> found_ GUARDED_BY(lock_);
  std::unique_ptr<WalkEnd> end_ GUARDED_BY(lock_);
  bool awake_ GUARDED_BY(lock_) = false;  // a turn is to come
};

}  // namespace corvane
