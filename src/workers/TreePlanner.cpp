#include "workers/TreePlanner.h"

#include <sys/stat.h>

#include <algorithm>
#include <set>
#include <utility>

#include "remote/ExactTime.h"
#include "remote/RemotePath.h"
#include "util/Encodings.h"
#include "util/ErrorText.h"
#include "workers/EntryCollector.h"
#include "workers/FileDownload.h"
#include "workers/WayDown.h"

namespace corvane {
namespace {

using Kind = RemoteEntry::Kind;

}  // namespace

Outcome TreePlanner::Plan(const JobBoard::Work& directory, const LocalFolder& above) {
  return run_.what.download ? PlanDownload(directory, above) : PlanUpload(directory);
}

Outcome TreePlanner::CountEntries(std::size_t entries) {
  const auto count = static_cast<std::int64_t>(entries);
  std::int64_t before = run_.planned;
  do {
    if (count > run_.bounds.entries - before)
      return {Outcome::Kind::Refused, 0,
              Text("Left out, for the transfer has more than %1 entries.", run_.bounds.entries)};
  } while (!run_.planned.compare_exchange_weak(before, before + count));
  return {};
}

Outcome TreePlanner::PlanDownload(const JobBoard::Work& directory, const LocalFolder& above) {
  std::string where;
  if (Outcome entered = EnterRemote(directory, where); !entered.IsDone()) return entered;
  // A link that is listed as a directory: it was not chosen, and is not followed.
  if (directory.InFolder() && WayDown::LeadsElsewhere(directory.job.remote, where)) {
    return {Outcome::Kind::Done, 0, Text("a link or a special file")};
  }
  LocalFolder folder;
  if (const int error = folder.Enter(above, directory.name); error != 0) {
    Outcome outcome = WriteFailure(error);
    outcome.text = Text("Could not make the folder: %1", ErrorText(error));
    return outcome;
  }
  EntryCollector listing;
  Outcome listed = session_.List(where, listing);
  if (!listed.IsDone()) return listed;
  if (Outcome target = run_.LookForTarget(); !target.IsDone()) return target;
  if (Outcome counted = CountEntries(listing.entries.size()); !counted.IsDone()) return counted;
  if (!listed.text.IsEmpty() && listing.tooLong.empty())
    run_.notes.Note(Text("%1: %2", directory.shown, listed.text));
  std::vector<TransferJob> jobs = JobsOf(directory, folder, listing.entries);
  // They are refused in their turn.
  for (const RemoteEntry& found : listing.tooLong)
    jobs.push_back({.remote = found.name, .local = found.name, .kind = Kind::File});
  heldNothing_ = !run_.board.Open(directory, where, std::move(jobs));
  return {};
}

Outcome TreePlanner::EnterRemote(const JobBoard::Work& directory, std::string& where) {
  const std::vector<std::string> way = run_.board.Above(directory.id);
  if (way.size() >= run_.bounds.depth)
    return {Outcome::Kind::Refused, 0, Text("The directories are nested too deeply.")};
  if (Outcome outcome = session_.Enter(directory.job.remote, where); !outcome.IsDone())
    return outcome;
  const std::string begin = SplitPath(way.empty() ? directory.job.remote : way.front()).first;
  const bool above = where.starts_with('/') && IsAtOrAbove(where, begin);
  if (above || std::ranges::find(way, where) != way.end()) {
    return {Outcome::Kind::Refused, 0,
            Text("The server lists a directory inside itself: %1", where)};
  }
  return {};
}

std::vector<TransferJob> TreePlanner::JobsOf(const JobBoard::Work& directory,
                                             const LocalFolder& folder,
                                             const std::vector<RemoteEntry>& entries) {
  std::vector<TransferJob> jobs;
  std::set<std::string> taken;
  for (const RemoteEntry& found : entries) taken.insert(found.name);
  FreeNames names;
  if (directory.job.policy == Policy::KeepBoth) {
    names.TakeIn(folder.Fd());
    for (const RemoteEntry& found : entries)
      names.Take(Decoded(found.name, run_.what.site.encoding));
  }
  for (const RemoteEntry& found : entries) {
    const std::string shown = directory.shown + "/" + found.name;
    if (found.kind == Kind::Link || found.kind == Kind::Device) {
      const Text why = found.unclear ? Text("the listing does not tell its name")
                                     : Text("a link or a special file");
      run_.notes.Note(Text("Left out: %1 (%2)", shown, why));
      continue;
    }
    std::string local = Decoded(found.name, run_.what.site.encoding);
    // A name that would come to the same as another stays as the server has it.
    if (local != found.name && !taken.insert(local).second) local = found.name;
    TransferJob job{found.name,           std::move(local),
                    found.kind,           found.size.value_or(-1),
                    directory.job.policy, ExactTime(found.modified)};
    // A name that leads elsewhere stays what it is, and is refused in its turn.
    if (job.remote.find('/') != std::string::npos) job.local = job.remote;
    if (job.kind == Kind::Directory || Settle(job, folder, names)) {
      jobs.push_back(std::move(job));
    } else {
      run_.notes.Note(Text("%1: %2", shown, Text("Left alone, for it is there already.")));
    }
  }
  return jobs;
}

// Whether a file is to be fetched, by what stands in its place.
bool TreePlanner::Settle(TransferJob& job, const LocalFolder& folder, FreeNames& names) {
  const Policy policy = job.policy;
  const bool looks =
      policy == Policy::Skip || policy == Policy::Newer || policy == Policy::KeepBoth;
  if (!looks || !IsSafeLocalName(job.local)) return true;
  std::optional<LocalFolder::Entry> there;
  if (folder.Look(job.local, there) != 0) {
    job.policy = Policy::CreateNew;
    return true;
  }
  if (policy == Policy::Skip) return false;
  if (policy == Policy::Newer) {
    const bool newer = there && job.modified && *job.modified > there->modified;
    if (!there || newer || job.size < 0 || there->size != job.size) return true;
    return false;
  }
  job.local = names.Next(job.local, false);
  job.policy = Policy::CreateNew;
  return true;
}

// The time of a folder inside another is not asked for: where it is not listed, servers do not tell
// it.
void TreePlanner::Complete(const JobBoard::Work& directory, const LocalFolder& itself) {
  if (!run_.what.download) {
    struct stat status {};
    if (!run_.KeepsTimes(true) || ::stat(directory.job.local.c_str(), &status) != 0) return;
    run_.NoteTime(session_.SetModifiedTime(directory.job.remote, status.st_mtime), true);
    return;
  }
  if (!run_.what.keepTimes) return;
  auto time = directory.job.modified;
  if (!time && !directory.InFolder()) time = AskTime(session_, directory.job.remote);
  if (time) static_cast<void>(itself.SetTime(*time));
}

}  // namespace corvane
