#pragma once

#include <string>

#include "remote/BrowserUi.h"
#include "remote/Outcome.h"

namespace corvane {

class ListingCache;
class RemoteFile;
class RemoteSession;

/// Shows a remote file as text in a window of its own, up to the end of its data, or until it stays
/// away or the text window has enough or is closed. On the thread that holds the session's lease.
Outcome ViewFile(RemoteSession& session, BrowserUi& window, const std::string& path);

/// Shows the cached listing of a directory as it came.
void ViewListing(ListingCache& cache, BrowserUi& window, const std::string& directory);

}  // namespace corvane
