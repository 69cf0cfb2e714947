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
  const bool ends = outcome.kind == Outcome::Kind::Lost || outcome.kind == Outcome::Kind::Cancelled;
  if (!ends) return Refuse(path, outcome.text.Reason());
  over_ = true;
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
    if (which + 1 < paths.size() && !owner_.SetStatus(status)) over_ = true;
    return !over_;
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
  owner_.SetStatus(removed.IsDone() ? Text("Dir Deleted.") : Text("Deletion Failed."));
  return removed.IsDone();
}

// False where anything is left in the directory. What is refused does not keep the others.
bool TreeRemover::DeleteEntries(const std::string& directory) {
  EntryCollector listing;
  const Outcome listed = session_.List(directory, listing);
  if (!listed.IsDone()) {
    Note(directory, listed);
    return false;
  }
  const auto room = static_cast<std::size_t>(bounds_.entries - seen_);
  const bool tooMany = listing.entries.size() > room;
  if (tooMany) listing.entries.resize(room);
  seen_ += static_cast<std::int64_t>(listing.entries.size());
  // What was not understood stands there still.
  bool emptied = listed.text.IsEmpty();
  if (!emptied) Refuse(directory, listed.text);
  const auto end = listing.entries.end();
  for (auto at = listing.entries.begin(); at != end && !over_ && !session_.IsLost();) {
    std::vector<std::string> files;
    for (; at != end && IsFileHere(*at); ++at) files.push_back(at->name);
    if (files.empty()) {
      if (!DeleteEntry(directory, *at++)) emptied = false;
    } else {
      std::size_t deleted = 0;
      DeleteFiles(directory, files, Text("Deleting File."),
                  [&deleted](bool gone) { return deleted += gone ? 1 : 0, true; });
      if (deleted < files.size()) emptied = false;
    }
  }
  if (over_ || session_.IsLost()) return false;
  if (!tooMany) return emptied;
  Refuse(directory, Text("The deletion stopped here, after %1 entries.", bounds_.entries));
  over_ = true;
  return false;
}

bool TreeRemover::DeleteEntry(const std::string& directory, const RemoteEntry& entry) {
  const std::string path = PathBelow(directory, entry.name);
  const bool isLink =
      entry.kind == Kind::Link && (entry.mode.empty() || entry.mode.starts_with('l'));
  if (entry.name.find('/') != std::string::npos) {
    Refuse(path, Text("Left alone, for the name leads elsewhere."));
  } else if (entry.unclear) {
    Refuse(path, Text("Left alone, for the listing does not tell its name."));
  } else if (entry.kind != Kind::Directory) {
    Refuse(path, isLink ? Text("Left alone, for it is a link.")
                        : Text("Left alone, for it is a special file."));
  } else {
    if (!owner_.SetStatus(Text("Deleting Directory."))) over_ = true;
    return !over_ && DeleteDirectory(path);
  }
  return false;
}

}  // namespace corvane
