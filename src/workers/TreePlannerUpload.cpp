#include <algorithm>
#include <filesystem>
#include <utility>

#include "remote/ExactTime.h"
#include "remote/RemotePath.h"
#include "util/Encodings.h"
#include "util/ErrorText.h"
#include "workers/EntryCollector.h"
#include "workers/TreePlanner.h"

namespace corvane {
namespace {

namespace fs = std::filesystem;

using Kind = RemoteEntry::Kind;

// The entries of a local folder by name; an error leaves none.
std::vector<fs::directory_entry> EntriesOf(const std::string& folder, std::error_code& error) {
  std::vector<fs::directory_entry> entries;
  fs::directory_iterator at(folder, error);
  for (; !error && at != fs::directory_iterator(); at.increment(error)) entries.push_back(*at);
  if (error) entries.clear();
  std::sort(entries.begin(), entries.end());
  return entries;
}

// Why an entry inside a folder is not sent, or nothing. One that has just gone is tried all the
// same, so that it is missed.
Text LeftOut(const fs::directory_entry& entry) {
  std::error_code error;
  const fs::file_type own = entry.symlink_status(error).type();
  const fs::file_type type = entry.status(error).type();
  if (own == fs::file_type::not_found || type == fs::file_type::regular) return {};
  if (own == fs::file_type::symlink)
    return type == fs::file_type::directory ? Text("a link to a folder")
                                            : Text("a link to no file");
  return own == fs::file_type::directory ? Text() : Text("a special file");
}

std::int64_t TimeOf(const fs::directory_entry& entry) {
  std::error_code error;
  const auto time = entry.last_write_time(error);
  if (error) return 0;
  const auto system = std::chrono::file_clock::to_sys(time).time_since_epoch();
  return std::chrono::floor<std::chrono::seconds>(system).count();
}

}  // namespace

Outcome TreePlanner::PlanUpload(const JobBoard::Work& directory) {
  if (!IsSafeLocalName(SplitPath(directory.job.remote).second))
    return Outcome::LocalError(Text("The folder has no name of its own."));
  if (run_.board.Above(directory.id).size() >= run_.bounds.depth)
    return Outcome::LocalError(Text("The directories are nested too deeply."));
  std::string where;
  std::vector<RemoteEntry> there;
  if (Outcome made = MakeRemote(directory, where, there); !made.IsDone()) return made;
  std::error_code error;
  const std::vector<fs::directory_entry> entries = EntriesOf(directory.job.local, error);
  if (error) {
    return Outcome::LocalError(Text("Could not read the folder: %1", ErrorText(error.value())));
  }
  if (Outcome counted = CountEntries(entries.size()); !counted.IsDone()) return counted;
  FreeNames names;
  for (const RemoteEntry& found : there) names.Take(found.name);
  for (const fs::directory_entry& found : entries)
    names.Take(Encoded(found.path().filename().string(), run_.what.site.encoding).value_or(""));
  std::vector<TransferJob> jobs;
  for (const fs::directory_entry& found : entries) {
    if (const Text kind = LeftOut(found); !kind.IsEmpty()) {
      run_.notes.Note(Text("Left out: %1 (%2)",
                           directory.shown + "/" + found.path().filename().string(), kind));
      continue;
    }
    AddLocal(directory, found.path(), there, names, jobs);
  }
  heldNothing_ = !run_.board.Open(directory, where, std::move(jobs));
  return {};
}

// One that is there already refuses to be made; it is entered, and what it holds is looked at.
Outcome TreePlanner::MakeRemote(const JobBoard::Work& directory, std::string& where,
                                std::vector<RemoteEntry>& there) {
  where = directory.job.remote;
  Outcome made = session_.MakeDirectory(directory.job.remote);
  if (made.kind != Outcome::Kind::Refused) return made;
  const Outcome entered = session_.Enter(directory.job.remote, where);
  if (!entered.IsDone()) return entered.kind == Outcome::Kind::Refused ? made : entered;
  EntryCollector listing;
  Outcome listed = session_.List(where, listing);
  if (listed.IsDone() && !listed.text.IsEmpty())
    run_.notes.Note(Text("%1: %2", directory.shown, listed.text));
  there = std::move(listing.entries);
  std::ranges::sort(there, {}, &RemoteEntry::name);
  return listed;
}

void TreePlanner::AddLocal(const JobBoard::Work& directory, const std::string& path,
                           const std::vector<RemoteEntry>& there, FreeNames& names,
                           std::vector<TransferJob>& jobs) {
  const std::string local = SplitPath(path).second;
  const std::string shown = directory.shown + "/" + local;
  // A name that the server cannot have is refused in its turn.
  const auto encoded = Encoded(local, run_.what.site.encoding);
  const fs::directory_entry found(path);
  std::error_code ignored;
  TransferJob job{encoded.value_or(local), local, Kind::File, -1, directory.job.policy};
  if (found.is_directory(ignored)) {
    job.kind = Kind::Directory;
  } else {
    const std::uintmax_t size = found.file_size(ignored);
    job.size = ignored ? -1 : static_cast<std::int64_t>(size);
    job.modified = TimeOf(found);
    if (encoded && !Settle(job, there, *job.modified, names)) {
      run_.notes.Note(Text("%1: %2", shown, Text("Left alone, for it is there already.")));
      return;
    }
  }
  jobs.push_back(std::move(job));
}

// Whether a file is to be sent, by what stands in its place.
bool TreePlanner::Settle(TransferJob& job, const std::vector<RemoteEntry>& there,
                         std::int64_t modified, FreeNames& names) {
  const auto find = [&there](const std::string& name) {
    const auto at = std::ranges::lower_bound(there, name, {}, &RemoteEntry::name);
    return at != there.end() && at->name == name ? &*at : nullptr;
  };
  const RemoteEntry* const one = find(job.remote);
  if (one == nullptr) {
    job.policy = Policy::CreateNew;
    return true;
  }
  job.there = true;
  if (job.policy == Policy::Skip) return false;
  if (job.policy == Policy::Newer) {
    const auto time = ExactTime(one->modified);
    const bool newer = time && modified > *time;
    return newer || !one->size || *one->size != job.size;
  }
  if (job.policy != Policy::KeepBoth) return true;
  job.remote = names.Next(job.remote, false);
  job.policy = Policy::CreateNew;
  job.there = false;
  return true;
}

}  // namespace corvane
