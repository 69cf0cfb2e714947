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
  if (!EnterDirectory(walk, name, true)) {
    refused.Add(shown, failure_);
  } else {
    // What was listed as a directory may be a link by now, or in a listing that hides links: it is
    // not to be emptied where it leads.
    bool emptied = false;
    if (StandsBelow(walk, name)) {
      emptied = DeleteEntries(walk, shown, refused);
    } else {
      refused.Add(shown, "Left alone, for it leads to " + walk.paths.back());
    }
    if (!walk.lost && !LeaveDirectory(walk)) refused.Add(shown, failure_);
    if (!walk.lost && emptied) {
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

// Deletes what stands in the working directory, `shown` to the user so; false when the directory
// cannot be removed after it.
bool MFtp::DeleteEntries(Walk& walk, const std::string& shown, Refusals& refused) {
  const std::string directory = walk.paths.back().empty() ? shown : walk.paths.back();
  if (!SetUpData()) {
    refused.Add(directory, "No data connection for the listing.");
    return false;
  }
  const int code = SendCommand(BINARY);
  bool result = code >= 200 && code < 300;
  if (!result) refused.Add(directory, lastReplyText_);
  const Listing listing = GetListing();
  if (!listing.whole) {
    refused.Add(directory, "The listing did not come whole.");
    return false;
  }
  for (const WalkEntry& entry : Parse(listing.text)) {
    const std::string path = directory + "/" + entry.name;
    const bool goes = entry.type == kDirectory || entry.type == kFile;
    if (!goes) {
      refused.Add(path, "Left alone, for it is a link.");
    } else if (entry.name.find('/') != std::string::npos) {
      refused.Add(path, "Left alone, for the name leads elsewhere.");
      return false;
    } else if (entry.type == kDirectory) {
      if (!UpdateStatus("Deleting Directory.")) return false;
      result = DeleteDirectory(entry.name, walk, refused) != 0;
      if (!result) return false;
    } else {
      if (!UpdateStatus("Deleting File.")) return false;
      // A refused delete does not keep the others; the last one decides whether RMD is tried.
      result = DeleteFile(entry.name, path, refused);
    }
  }
  return result;
}

}  // namespace corvane
