#pragma once

#include <cstdint>
#include <memory>

#include "workers/MThread.h"

namespace corvane {

class ListingCache;
class MFtp;

/// Fetches the working directory's listing and shows it in the browser window.
class DirLister : public MThread {
 public:
  /// Shares both with the looper that starts it.
  DirLister(std::shared_ptr<ListingCache> cache, std::shared_ptr<MFtp> engine);

 protected:
  std::int32_t Execute() override;

 private:
  std::shared_ptr<ListingCache> cache_;
  std::shared_ptr<MFtp> engine_;
};

/// The same on the caller's thread; the caller holds the engine's lease. Throws NLException when
/// the connection is lost.
void ListDirectory(MFtp& engine, ListingCache& cache);

}  // namespace corvane
