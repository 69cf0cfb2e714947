#include "ftp/MFtp.h"

namespace corvane {

bool MFtp::DeleteFile(const std::string& name, Refusals& refused) {
  return DeleteFile(name, name, refused);
}

bool MFtp::DeleteFile(const std::string& name, const std::string& shown, Refusals& refused) {
  const int code = SendCommand("DELE " + name + "\n");
  if (code >= 200 && code < 300) return true;
  refused.Add(shown, code == 0 ? failure_ : lastReplyText_);
  return false;
}

int MFtp::DeleteDirectory(const std::string& name, Refusals& refused) {
  Walk walk;
  const int result = DeleteDirectory(name, walk, refused);
  if (walk.lost) ReturnToStart(walk);
  return result;
}

int MFtp::DeleteDirectory(const std::string& name, Walk& walk, Refusals& refused) {
  const std::string shown =
      walk.paths.size() < 2 || walk.paths.back().empty() ? name : walk.paths.back() + "/" + name;
  // The first one is the user's own choice and is not asked for.
  if (!EnterDirectory(walk, name, walk.paths.size() > 1)) {
    refused.Add(shown, failure_);
  } else {
    const int emptied = DeleteEntries(walk, refused);
    if (!walk.lost && !LeaveDirectory(walk)) refused.Add(shown, failure_);
    if (!walk.lost && emptied != 0) {
      const int code = SendCommand("RMD " + name + "\n");
      const bool removed = code >= 200 && code < 300;
      if (!removed) refused.Add(shown, code == 0 ? failure_ : lastReplyText_);
      UpdateStatus("Dir Deleted.");
      return removed ? 1 : 0;
    }
  }
  UpdateStatus("Deletion Failed.");
  return 0;
}

// Deletes what stands in the working directory; 0 when the directory cannot be removed after it.
int MFtp::DeleteEntries(Walk& walk, Refusals& refused) {
  const std::string directory = walk.paths.back();
  const auto shown = [&directory](const std::string& name) {
    return directory.empty() ? name : directory + "/" + name;
  };
  if (!SetUpData()) return 0;
  int result = CheckResult(SendCommand(BINARY));
  const Listing listing = GetListing();
  if (!listing.whole) {
    refused.Add(shown(""), "The listing did not come whole.");
    return 0;
  }
  for (const WalkEntry& entry : Parse(listing.text)) {
    // Links stay, and their targets are part of the name here.
    const bool goes = entry.type == kDirectory || entry.type == kFile;
    if (goes && entry.name.find('/') != std::string::npos) {
      refused.Add(shown(entry.name), "Left alone, for the name leads elsewhere.");
      return 0;
    }
    if (entry.type == kDirectory) {
      if (!UpdateStatus("Deleting Directory.")) return 0;
      result = DeleteDirectory(entry.name, walk, refused);
      if (result == 0) return 0;
    } else if (entry.type == kFile) {
      if (!UpdateStatus("Deleting File.")) return 0;
      // A refused delete does not keep the others; the last one decides whether RMD is tried.
      result = DeleteFile(entry.name, shown(entry.name), refused) ? 1 : 0;
    }
  }
  return result;
}

}  // namespace corvane
