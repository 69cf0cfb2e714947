#include <cerrno>
#include <set>
#include <utility>

#include "remote/RemotePath.h"
#include "util/Encodings.h"
#include "util/ErrorText.h"
#include "util/LocalFolder.h"
#include "workers/EntryCollector.h"
#include "workers/FileTransfer.h"

namespace corvane {
namespace {

using Kind = RemoteEntry::Kind;

Outcome UnusableName(const std::string& name, Kind kind) {
  return Outcome::LocalError(kind == Kind::Directory
                                 ? Text("The name \"%1\" cannot be a local folder's.", name)
                                 : Text("The name \"%1\" cannot be used for a local file.", name));
}

bool IsExact(const std::optional<RemoteTime>& time) {
  return time && time->utc && time->precision == RemoteTime::Precision::Second;
}

Outcome OpenFailure(const std::string& name, int error) {
  if (error == EWOULDBLOCK)
    return Outcome::LocalError(Text("Another transfer is writing %1 already.", name));
  if (error == EEXIST) return Outcome::LocalError(Text("\"%1\" exists already.", name));
  Outcome outcome = WriteFailure(error);
  outcome.text = Text("Could not open %1: %2", name, ErrorText(error));
  return outcome;
}

}  // namespace

Outcome FileTransfer::DownloadAll() {
  LocalFolder target;
  if (const int error = target.Open(description_.targetFolder); error != 0) {
    notes_.Failed({}, Outcome::LocalError(Text("Could not open %1: %2", description_.targetFolder,
                                               ErrorText(error))));
    return {Outcome::Kind::LocalFull};
  }
  const std::string above = PathBelow(description_.targetFolder, "");
  bool tree = false;
  for (const TransferJob& job : description_.jobs) {
    tree = tree || job.kind == Kind::Directory;
    const bool inside = job.local.starts_with(above);
    const std::string name = inside ? job.local.substr(above.size()) : job.local;
    Outcome outcome = DownloadEntry(target, {job, name, false});
    if (Stops(outcome)) return outcome;
  }
  // The files of trees are written out together.
  if (const int error = tree ? target.SyncAll() : 0; error != 0) {
    Outcome outcome = WriteFailure(error);
    notes_.Failed({}, outcome);
    return outcome;
  }
  return {};
}

// What was chosen is named from the target folder on, so that no name leads out of it.
std::string FileTransfer::LocalName(const Entry& entry) {
  return entry.inFolder ? SplitPath(entry.job.local).second : entry.shown;
}

Outcome FileTransfer::DownloadEntry(const LocalFolder& folder, const Entry& entry) {
  if (Cancelled()) return Outcome::Cancelled();
  notes_.Begin();
  return entry.job.kind == Kind::Directory ? dDirectory(folder, entry)
                                           : End(entry, DownloadFile(folder, entry));
}

// What fails inside a directory is noted there and does not make the directory fail.
Outcome FileTransfer::dDirectory(const LocalFolder& above, const Entry& entry) {
  const std::string name = LocalName(entry);
  if (!IsSafeLocalName(name)) return End(entry, UnusableName(name, Kind::Directory));
  std::string where;
  const Outcome entered = way_.Enter(entry.job.remote, where);
  if (!entered.IsDone()) return End(entry, entered);
  Outcome outcome;
  if (entry.inFolder && WayDown::LeadsElsewhere(entry.job.remote, where)) {
    notes_.Note(Text("Left out: %1 (%2)", entry.shown, Text("a link or a special file")));
  } else {
    outcome = DownloadEntries(above, entry, where);
  }
  way_.Leave();
  return outcome;
}

Outcome FileTransfer::DownloadEntries(const LocalFolder& above, const Entry& entry,
                                      const std::string& where) {
  LocalFolder folder;
  if (const int error = folder.Enter(above, LocalName(entry)); error != 0) {
    Outcome outcome = WriteFailure(error);
    outcome.text = Text("Could not make the folder: %1", ErrorText(error));
    return End(entry, outcome);
  }
  EntryCollector listing;
  Outcome listed = End(entry, session_->List(where, listing));
  if (!listed.IsDone()) return listed;
  std::set<std::string> taken;
  for (const RemoteEntry& found : listing.entries) taken.insert(found.name);
  for (RemoteEntry& found : listing.entries) {
    const std::string shown = entry.shown + "/" + found.name;
    if (found.kind == Kind::Link || found.kind == Kind::Device) {
      notes_.Note(Text("Left out: %1 (%2)", shown, Text("a link or a special file")));
      continue;
    }
    std::string local = Decoded(found.name, description_.site.encoding);
    // A name that would come to the same as another stays as the server has it.
    if (local != found.name && !taken.insert(local).second) local = found.name;
    TransferJob job{PathBelow(where, found.name), PathBelow(entry.job.local, local), found.kind,
                    found.size.value_or(-1), entry.job.policy};
    if (IsExact(found.modified)) job.modified = found.modified->seconds;
    if ((found.name + local).find('/') != std::string::npos) {
      notes_.Begin();
      (void)End({std::move(job), shown, true}, UnusableName(found.name, found.kind));
      continue;
    }
    Outcome outcome = DownloadEntry(folder, {std::move(job), shown, true});
    if (Stops(outcome)) return outcome;
  }
  if (const auto time = TimeOf(entry)) static_cast<void>(folder.SetTime(*time));
  return {};
}

// A folder inside another is not asked for: where its time is not listed, servers do not tell it.
std::optional<std::int64_t> FileTransfer::TimeOf(const Entry& entry) {
  if (!description_.keepTimes) return std::nullopt;
  if (entry.job.modified) return entry.job.modified;
  if (entry.inFolder && entry.job.kind == Kind::Directory) return std::nullopt;
  std::optional<RemoteTime> time;
  if (!session_->ModifiedTime(entry.job.remote, time).IsDone() || !IsExact(time))
    return std::nullopt;
  return time->seconds;
}

Outcome FileTransfer::DownloadFile(const LocalFolder& folder, const Entry& entry) {
  const std::string name = LocalName(entry);
  // What had a part file's name would be removed together with the part files of killed transfers.
  if (!IsSafeLocalName(name) || PartFile::IsPartName(name)) return UnusableName(name, Kind::File);
  LocalFile file;
  bool resume = false;
  Outcome outcome = OpenTarget(folder, entry, file, resume);
  if (!outcome.IsDone() || !outcome.text.IsEmpty()) return outcome;
  if (!BeginFile(entry, Text("Downloading File."), std::max<std::int64_t>(entry.job.size, 0)))
    return Outcome::Cancelled();
  if (const auto time = TimeOf(entry)) file.SetTime(*time);
  outcome = mover_.Download(entry.job.remote, entry.job.size, file, resume,
                            entry.inFolder ? Durability::Later : Durability::Now);
  if (outcome.IsDone() && entry.inFolder) {
    ++row_->Progress().files;
    row_->Progress().changed = true;
  }
  return outcome;
}

// Done with a text says that there is nothing to fetch. In a folder that is resumed some files are
// whole, some begun, and some not there yet.
Outcome FileTransfer::OpenTarget(const LocalFolder& folder, const Entry& entry, LocalFile& file,
                                 bool& resume) {
  const std::string name = LocalName(entry);
  const Policy policy = entry.job.policy;
  resume = policy == Policy::Resume;
  int error = 0;
  if (resume) {
    error = file.Open(folder, name, LocalFile::Mode::Resume);
    if (error != ENOENT || !entry.inFolder) {
      return error == 0 ? Outcome{} : OpenFailure(name, error);
    }
    resume = false;
  }
  error =
      file.Open(folder, name,
                policy == Policy::Replace ? LocalFile::Mode::Replace : LocalFile::Mode::CreateNew);
  if (error == EEXIST && policy == Policy::Skip) {
    return {Outcome::Kind::Done, 0, Text("Left alone, for it is there already.")};
  }
  return error == 0 ? Outcome{} : OpenFailure(name, error);
}

}  // namespace corvane
