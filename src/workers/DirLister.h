#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "remote/BrowserUi.h"
#include "remote/Outcome.h"
#include "workers/MThread.h"
#include "workers/SessionTurn.h"

namespace corvane {

class ListingCache;
class RemoteSession;

/// Fetches a directory's listing and shows it in the browser window, which was emptied before;
/// nothing where it was cancelled before its turn came.
class DirLister : public MThread {
 public:
  /// Shares all three with the looper that starts it. `verdict` is what the status says at the end;
  /// `listed` is called once the listing has come whole.
  DirLister(std::shared_ptr<RemoteSession> session, std::shared_ptr<ListingCache> cache,
            std::shared_ptr<BrowserUi> window, std::string directory, Text verdict,
            std::function<void()> listed);

  /// Another listing takes this one's place, before its turn has come.
  void Cancel() override;
  /// Any thread: ends the listing soon; the connection stays.
  void Stop() { turn_.Stop(); }

 protected:
  std::int32_t Execute() override;

 private:
  const std::shared_ptr<RemoteSession> session_;
  const std::shared_ptr<ListingCache> cache_;
  const std::shared_ptr<BrowserUi> window_;
  const std::string directory_;
  const Text verdict_;
  const std::function<void()> listed_;
  SessionTurn turn_;
};

/// Lists on the caller's thread, which holds the session's lease. What comes takes the place of the
/// rows shown, also where it is not whole; where the connection is lost or the user stops before
/// anything has come they stay, unless the window was `emptied` for it.
Outcome ListDirectory(RemoteSession& session, ListingCache& cache, BrowserUi& window,
                      const std::string& directory, bool emptied);

}  // namespace corvane
