#include "workers/DirLister.h"

#include <cstddef>
#include <utility>

#include "remote/RemoteSession.h"
#include "workers/ListingCache.h"

namespace corvane {
namespace {

// A listing on its way into the window and the cache.
class WindowSink final : public ListingSink {
 public:
  WindowSink(ListingCache& cache, BrowserUi& window, const std::string& directory)
      : cache_(cache), window_(window), directory_(directory) {}

  void Raw(std::string_view text) override {
    cache_.WriteListing(directory_, text);
    window_.BeginListing();
  }
  bool Add(std::vector<RemoteEntry> entries) override {
    std::erase_if(entries,
                  [](const RemoteEntry& entry) { return entry.kind == RemoteEntry::Kind::Device; });
    count_ += entries.size();
    return window_.AddEntries(std::move(entries));
  }
  [[nodiscard]] std::size_t Count() const { return count_; }

 private:
  ListingCache& cache_;
  BrowserUi& window_;
  const std::string& directory_;
  std::size_t count_ = 0;
};

}  // namespace

DirLister::DirLister(std::shared_ptr<RemoteSession> session, std::shared_ptr<ListingCache> cache,
                     std::shared_ptr<BrowserUi> window, std::string directory)
    : session_(std::move(session)),
      cache_(std::move(cache)),
      window_(std::move(window)),
      directory_(std::move(directory)) {}

std::int32_t DirLister::Execute() {
  const EngineLease lease(*session_);
  if (!Cancelled()) ListDirectory(*session_, *cache_, *window_, directory_);
  return 0;
}

void ListDirectory(RemoteSession& session, ListingCache& cache, BrowserUi& window,
                   const std::string& directory) {
  WindowSink sink(cache, window, directory);
  const Outcome outcome = session.List(directory, sink);
  window.SetStatus(session.IsLost() ? Text("Connection lost.") : Text("Connected."));
  window.EndListing(sink.Count());
  TellOutcome(window, session, outcome);
}

void TellOutcome(BrowserUi& window, const RemoteSession& session, const Outcome& outcome) {
  switch (outcome.kind) {
    case Outcome::Kind::Cancelled: break;
    case Outcome::Kind::Lost: TellLoss(window, session); break;
    default:
      if (!outcome.text.IsEmpty()) Warn(window, outcome.text);
  }
}

void TellLoss(BrowserUi& window, const RemoteSession& session) {
  window.SetStatus(Text("Connection lost."));
  Message lost("LOST"_what);
  lost.AddText("warning", Text::WithReason(Text("The connection to %1 was lost.", session.Host()),
                                           session.WhyLost()));
  window.PostMessage(std::move(lost));
}

void Warn(BrowserUi& window, const Text& text) {
  Message warning("GERR"_what);
  warning.AddText("warning", text);
  window.PostMessage(std::move(warning));
}

}  // namespace corvane
