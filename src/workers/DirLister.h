#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "remote/BrowserUi.h"
#include "remote/Outcome.h"
#include "workers/MThread.h"

namespace corvane {

class ListingCache;
class RemoteSession;

/// Fetches a directory's listing and shows it in the browser window; nothing where it was cancelled
/// before its turn came.
class DirLister : public MThread {
 public:
  /// Shares all three with the looper that starts it.
  DirLister(std::shared_ptr<RemoteSession> session, std::shared_ptr<ListingCache> cache,
            std::shared_ptr<BrowserUi> window, std::string directory);

 protected:
  std::int32_t Execute() override;

 private:
  const std::shared_ptr<RemoteSession> session_;
  const std::shared_ptr<ListingCache> cache_;
  const std::shared_ptr<BrowserUi> window_;
  const std::string directory_;
};

/// Lists on the caller's thread, which holds the session's lease, and tells the user what was the
/// matter. Even a listing that failed empties the window and shows the way up.
void ListDirectory(RemoteSession& session, ListingCache& cache, BrowserUi& window,
                   const std::string& directory);

/// Tells the user of an operation that was not done: a warning, or that the connection is gone.
void TellOutcome(BrowserUi& window, const RemoteSession& session, const Outcome& outcome);

/// Tells the user that the connection is gone, and why ('LOST').
void TellLoss(BrowserUi& window, const RemoteSession& session);

/// Warns the user ('GERR').
void Warn(BrowserUi& window, const Text& text);

}  // namespace corvane
