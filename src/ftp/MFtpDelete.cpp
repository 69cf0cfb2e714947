#include <algorithm>
#include <atomic>

#include "ftp/MFtp.h"

namespace corvane {

int MFtp::DeleteDirectory(const std::string& name) {
  std::vector<std::string> above;
  return DeleteDirectory(name, above);
}

// `above` holds the directories on the way down, so that a server which lists one inside itself is
// not followed round and round.
int MFtp::DeleteDirectory(const std::string& name, std::vector<std::string>& above) {
  if (Accepted(ChangeDir(name), "The directory cannot be opened.")) {
    const bool fresh = EntersNewDirectory(above);
    const int emptied = fresh ? DeleteEntries(above) : 0;
    above.pop_back();
    if (CheckResult(SendCommand("CWD ..\n")) != 0 && emptied != 0) {
      const int removed = CheckResult(SendCommand("RMD " + name + "\n"));
      UpdateStatus("Dir Deleted.");
      return removed;
    }
  }
  UpdateStatus("Deletion Failed.");
  return 0;
}

// Notes the directory that was just entered; false when it must not be walked. The first one is the
// user's own choice and is not asked for.
bool MFtp::EntersNewDirectory(std::vector<std::string>& above) {
  std::string path;
  if (!above.empty()) path = AskPath().value_or("");
  const bool known = !path.empty() && std::find(above.begin(), above.end(), path) != above.end();
  above.push_back(path);
  if (!known && above.size() <= kMaxDepth) return true;
  Fail(known ? "The server lists a directory inside itself: " + path
             : "The directories are nested too deeply.");
  Warn(failure_ + "\n");
  return false;
}

// Deletes what stands in the working directory; 0 when the directory cannot be removed after it.
int MFtp::DeleteEntries(std::vector<std::string>& above) {
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
      result = DeleteDirectory(entry.name, above);
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
