#include "workers/TreeRemover.h"

#include <algorithm>

#include "remote/RemotePath.h"
#include "remote/RemoteSession.h"
#include "workers/EntryCollector.h"

namespace corvane {
namespace {

using Kind = RemoteEntry::Kind;

// One with a slash in its name lies elsewhere.
bool IsFileHere(const RemoteEntry& entry) {
  return entry.kind == Kind::File && entry.name.find('/') == std::string::npos;
}

}  // namespace

// The user sees paths from the directory on.
void TreeRemover::Refuse(const std::string& path, const Text& why) {
  const std::string above = PathBelow(directory_, "");
  refused_.Add(path.starts_with(above) ? path.substr(above.size()) : path, why);
}

// A loss and a stop are told by themselves.
void TreeRemover::Note(const std::string& path, const Outcome& outcome) {
  if (outcome.kind == Outcome::Kind::Lost || outcome.kind == Outcome::Kind::Cancelled) return;
  Refuse(path, outcome.text.Reason());
}

bool TreeRemover::RemoveDirectory(const std::string& name) {
  return DeleteDirectory(PathBelow(directory_, name));
}

void TreeRemover::RemoveFiles(const std::vector<std::string>& names,
                              const std::function<bool(bool)>& each) {
  DeleteFiles(directory_, names, Text("Deleting File.."), each);
}

void TreeRemover::DeleteFiles(const std::string& directory, const std::vector<std::string>& names,
                              const Text& status, const std::function<bool(bool)>& each) {
  std::vector<std::string> paths;
  paths.reserve(names.size());
  for (const std::string& name : names) paths.push_back(PathBelow(directory, name));
  owner_.SetStatus(status);
  (void)session_.RemoveFiles(paths, [&](std::size_t which, const Outcome& outcome) {
    if (!outcome.IsDone()) Note(paths[which], outcome);
    if (!each(outcome.IsDone())) return false;
    return which + 1 == paths.size() || owner_.SetStatus(status);
  });
}

bool TreeRemover::DeleteDirectory(const std::string& path) {
  std::string where;
  bool emptied = false;
  if (const Outcome entered = way_.Enter(path, where); !entered.IsDone()) {
    Note(path, entered);
  } else {
    // What was listed as a directory may be a link by now, or in a listing that hides links: it is
    // not to be emptied where it leads.
    if (WayDown::LeadsElsewhere(path, where)) {
      Refuse(path, Text("Left alone, for it leads to %1", where));
    } else {
      emptied = DeleteEntries(where);
    }
    way_.Leave();
  }
  if (!emptied) {
    owner_.SetStatus(Text("Deletion Failed."));
    return false;
  }
  const Outcome removed = session_.RemoveDirectory(path);
  if (!removed.IsDone()) Note(path, removed);
  owner_.SetStatus(Text("Dir Deleted."));
  return removed.IsDone();
}

// False when the directory cannot be removed after it. A refused file does not keep the others; the
// last entry decides whether the directory's removal is tried.
bool TreeRemover::DeleteEntries(const std::string& directory) {
  EntryCollector listing;
  const Outcome listed = session_.List(directory, listing);
  if (!listed.IsDone()) {
    Note(directory, listed);
    return false;
  }
  // What was not understood stands there still.
  const Text& missing = listed.text;
  if (!missing.IsEmpty()) Refuse(directory, missing);
  bool result = true;
  const auto end = listing.entries.end();
  for (auto at = listing.entries.begin(); at != end;) {
    std::vector<std::string> files;
    for (; at != end && IsFileHere(*at); ++at) files.push_back(at->name);
    if (!files.empty()) {
      result = false;
      DeleteFiles(directory, files, Text("Deleting File."),
                  [&result](bool deleted) { return result = deleted, true; });
    } else {
      const RemoteEntry& entry = *at++;
      result = DeleteEntry(directory, entry);
      if (!result && entry.kind == Kind::Directory) return false;
    }
    if (session_.IsLost()) return false;
  }
  return result && missing.IsEmpty();
}

bool TreeRemover::DeleteEntry(const std::string& directory, const RemoteEntry& entry) {
  const std::string path = PathBelow(directory, entry.name);
  if (entry.name.find('/') != std::string::npos) {
    Refuse(path, Text("Left alone, for the name leads elsewhere."));
    return false;
  }
  if (entry.unclear) {
    Refuse(path, Text("Left alone, for the listing does not tell its name."));
    return false;
  }
  switch (entry.kind) {
    case Kind::Directory:
      return owner_.SetStatus(Text("Deleting Directory.")) && DeleteDirectory(path);
    default: Refuse(path, Text("Left alone, for it is a link.")); return true;
  }
}

}  // namespace corvane
