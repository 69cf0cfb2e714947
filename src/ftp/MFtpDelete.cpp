#include <atomic>

#include "ftp/MFtp.h"

namespace corvane {

int MFtp::DeleteDirectory(const std::string& name) {
  return DeleteDirectory(name, 0);
}

int MFtp::DeleteDirectory(const std::string& name, int depth) {
  if (depth >= kMaxDepth) {
    Fail("The directories are nested too deeply.");
    Warn(failure_ + "\n");
  } else if (const int code = ChangeDir(name); CheckResult(code) != 0 && code < 400) {
    const int emptied = DeleteEntries(depth + 1);
    if (CheckResult(SendCommand("CWD ..\n")) != 0 && emptied != 0) {
      const int removed = CheckResult(SendCommand("RMD " + name + "\n"));
      UpdateStatus("Dir Deleted.");
      return removed;
    }
  }
  UpdateStatus("Deletion Failed.");
  return 0;
}

// Deletes what stands in the working directory; 0 when the directory cannot be removed after it.
int MFtp::DeleteEntries(int depth) {
  if (!SetUpData()) return 0;
  int result = CheckResult(SendCommand(BINARY));
  const Listing listing = GetListing();
  if (!listing.whole) return 0;
  for (const WalkEntry& entry : Parse(listing.text)) {
    // Such a name leads out of the directory that the user chose.
    if (entry.name.find('/') != std::string::npos) return 0;
    if (entry.type == kDirectory) {
      if (!UpdateStatus("Deleting Directory.")) return 0;
      result = DeleteDirectory(entry.name, depth);
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
