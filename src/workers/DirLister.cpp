#include "workers/DirLister.h"

#include <exception>
#include <string>
#include <utility>

#include "ftp/EngineLease.h"
#include "ftp/MFtp.h"
#include "net/NLException.h"
#include "workers/ListingCache.h"

namespace corvane {

DirLister::DirLister(std::shared_ptr<ListingCache> cache, std::shared_ptr<MFtp> engine)
    : cache_(std::move(cache)), engine_(std::move(engine)) {}

std::int32_t DirLister::Execute() {
  const EngineLease lease(*engine_);
  try {
    ListDirectory(*engine_, *cache_);
  } catch (const NLException& error) {
    engine_->ReportLost(error);
  } catch (const std::exception& error) {
    engine_->Warn(std::string("The listing could not be shown: ") + error.what() + "\n");
  }
  return 0;
}

void ListDirectory(MFtp& engine, ListingCache& cache) {
  MFtp::Listing listing;
  if (engine.SetUpData()) listing = engine.GetListing();
  cache.WriteListing(listing.text);
  // Even a listing that failed shows the way up.
  engine.ParseListing(listing.text);
}

}  // namespace corvane
