#include "ftp/MFtp.h"

namespace corvane {

int MFtp::DeleteDirectory(const std::string& name) {
  Walk walk;
  const int result = DeleteDirectory(name, walk);
  if (walk.lost) ReturnToStart(walk);
  return result;
}

int MFtp::DeleteDirectory(const std::string& name, Walk& walk) {
  // The first one is the user's own choice and is not asked for.
  if (EnterDirectory(walk, name, walk.paths.size() > 1)) {
    const int emptied = DeleteEntries(walk);
    if (!walk.lost && LeaveDirectory(walk) && emptied != 0) {
      const int removed = CheckResult(SendCommand("RMD " + name + "\n"));
      UpdateStatus("Dir Deleted.");
      return removed;
    }
  }
  UpdateStatus("Deletion Failed.");
  return 0;
}

// Deletes what stands in the working directory; 0 when the directory cannot be removed after it.
int MFtp::DeleteEntries(Walk& walk) {
  if (!SetUpData()) return 0;
  int result = CheckResult(SendCommand(BINARY));
  const Listing listing = GetListing();
  if (!listing.whole) return 0;
  for (const WalkEntry& entry : Parse(listing.text)) {
    if (entry.name.find('/') != std::string::npos) {
      Warn("An entry is left alone, for its name leads elsewhere: " + entry.name + "\n");
      return 0;
    }
    if (entry.type == kDirectory) {
      if (!UpdateStatus("Deleting Directory.")) return 0;
      result = DeleteDirectory(entry.name, walk);
      if (result == 0) return 0;
    } else if (entry.type == kFile) {
      if (!UpdateStatus("Deleting File.")) return 0;
      // A refused delete does not keep the others; the last one decides whether RMD is tried.
      result = CheckResult(SendCommand("DELE " + entry.name + "\n"));
    }
  }
  return result;
}

}  // namespace corvane
