#include "workers/DirLister.h"

#include <cstddef>
#include <utility>

#include "remote/RemoteSession.h"
#include "workers/ListingCache.h"
#include "workers/Notices.h"

namespace corvane {
namespace {

// A listing on its way into the window and the cache.
class WindowSink final : public ListingSink {
 public:
  WindowSink(ListingCache& cache, BrowserUi& window, const std::string& directory, bool emptied)
      : cache_(cache), window_(window), directory_(directory), begun_(emptied) {}

  void Raw(std::string_view text) override {
    cache_.WriteListing(directory_, text);
    begun_ = true;
    window_.BeginListing();
  }
  bool Add(std::vector<RemoteEntry> entries) override {
    std::erase_if(entries,
                  [](const RemoteEntry& entry) { return entry.kind == RemoteEntry::Kind::Device; });
    count_ += entries.size();
    return window_.AddEntries(std::move(entries));
  }
  void End(bool whole) {
    if (begun_) window_.EndListing(count_, whole);
  }

 private:
  ListingCache& cache_;
  BrowserUi& window_;
  const std::string& directory_;
  bool begun_;  // the window's rows have gone
  std::size_t count_ = 0;
};

}  // namespace

DirLister::DirLister(std::shared_ptr<RemoteSession> session, std::shared_ptr<ListingCache> cache,
                     std::shared_ptr<BrowserUi> window, std::string directory, Text verdict,
                     std::function<void()> listed)
    : session_(std::move(session)),
      cache_(std::move(cache)),
      window_(std::move(window)),
      directory_(std::move(directory)),
      verdict_(std::move(verdict)),
      listed_(std::move(listed)),
      turn_(*session_) {
  turn_.Begin();
}

void DirLister::Cancel() {
  MThread::Cancel();
  turn_.Stop();
}

std::int32_t DirLister::Execute() {
  const EngineLease lease(*session_);
  if (Cancelled()) return 0;
  Outcome outcome = Outcome::Cancelled();
  if (turn_.Work()) {
    outcome = ListDirectory(*session_, *cache_, *window_, directory_, true);
  } else {
    window_->EndListing(0, false);
  }
  turn_.End();
  const bool stopped = outcome.kind == Outcome::Kind::Cancelled;
  window_->SetStatus(stopped ? Text("Stopped before the listing came.") : verdict_);
  TellOutcome(*window_, *session_, outcome);
  if (outcome.IsDone()) listed_();
  return 0;
}

Outcome ListDirectory(RemoteSession& session, ListingCache& cache, BrowserUi& window,
                      const std::string& directory, bool emptied) {
  WindowSink sink(cache, window, directory, emptied);
  Outcome outcome = session.List(directory, sink);
  sink.End(outcome.IsDone());
  return outcome;
}

}  // namespace corvane
