#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <vector>

#include "remote/RemotePath.h"
#include "util/Encodings.h"
#include "util/ErrorText.h"
#include "util/LocalFolder.h"
#include "workers/EntryCollector.h"
#include "workers/FileTransfer.h"

namespace corvane {
namespace {

namespace fs = std::filesystem;

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

}  // namespace

Outcome FileTransfer::UploadAll() {
  for (const TransferJob& job : description_.jobs) {
    if (Cancelled()) return Outcome::Cancelled();
    const Entry entry{job, SplitPath(job.remote).second, false};
    std::error_code ignored;
    const bool folder = fs::is_directory(job.local, ignored);
    Outcome outcome = folder ? uDirectory(entry) : UploadFile(entry);
    if (Stops(outcome)) return outcome;
    if (!outcome.IsDone() && folder)
      notes_.Note(Text("%1: %2", entry.shown, Text("The rest of this folder was not sent.")));
    if (outcome.IsDone()) TellAdded(job, folder);
  }
  return {};
}

Outcome FileTransfer::uDirectory(const Entry& entry) {
  if (Cancelled()) return Outcome::Cancelled();
  notes_.Begin();
  if (!IsSafeLocalName(SplitPath(entry.job.remote).second)) {
    return End(entry, Outcome::LocalError(Text("The folder has no name of its own.")));
  }
  // One that is there already refuses to be made and is entered all the same.
  const Outcome made = session_->MakeDirectory(entry.job.remote);
  std::string where;
  const Outcome entered = way_.Enter(entry.job.remote, where);
  if (!entered.IsDone()) {
    return End(entry, made.kind == Outcome::Kind::Refused ? made : entered);
  }
  Outcome outcome = UploadEntries(entry, where, made.IsDone());
  way_.Leave();
  struct stat status {};
  if (outcome.IsDone() && ::stat(entry.job.local.c_str(), &status) == 0)
    KeepTime(entry.job.remote, status.st_mtime, true);
  return outcome;
}

Outcome FileTransfer::UploadEntries(const Entry& entry, const std::string& where, bool made) {
  std::error_code error;
  const std::vector<fs::directory_entry> entries = EntriesOf(entry.job.local, error);
  if (error) {
    return End(entry, Outcome::LocalError(
                          Text("Could not read the folder: %1", ErrorText(error.value()))));
  }
  for (const fs::directory_entry& found : entries) {
    const std::string local = found.path().filename();
    const auto encoded = Encoded(local, description_.site.encoding);
    const std::string name = encoded.value_or(local);
    // In a folder that was just made nothing is replaced.
    const Policy policy = made ? Policy::Replace : entry.job.policy;
    const Entry inside{
        {PathBelow(where, name), found.path(), {}, -1, policy}, entry.shown + "/" + name, true};
    if (!encoded) {
      notes_.Begin();
      (void)End(inside, Outcome::LocalError(Text("The name has letters that %1 does not have.",
                                                 description_.site.encoding)));
      continue;
    }
    if (const Text kind = LeftOut(found); !kind.IsEmpty()) {
      notes_.Note(Text("Left out: %1 (%2)", inside.shown, kind));
      continue;
    }
    std::error_code ignored;
    Outcome outcome = found.is_directory(ignored) ? uDirectory(inside) : UploadFile(inside);
    if (!outcome.IsDone()) return outcome;
  }
  return {};
}

Outcome FileTransfer::UploadFile(const Entry& entry) {
  if (Cancelled()) return Outcome::Cancelled();
  notes_.Begin();
  LocalFile file;
  if (const int error = file.OpenForReading(entry.job.local); error != 0) {
    row_->SetTrailing(Text("  *Could not open file for reading!*"));
    return End(entry, Outcome::LocalError(
                          Text("Could not read %1: %2", entry.job.local, ErrorText(error))));
  }
  if (entry.job.policy == Policy::CreateNew || entry.job.policy == Policy::Skip) {
    bool exists = false;
    const Outcome asked = session_->Exists(entry.job.remote, exists);
    if (!asked.IsDone()) return End(entry, asked);
    if (exists && entry.job.policy == Policy::Skip) {
      return End(entry, {Outcome::Kind::Done, 0, Text("Left alone, for it is there already.")});
    }
    if (exists) {
      return End(entry, {Outcome::Kind::Refused, 0,
                         Text("\"%1\" exists already.", SplitPath(entry.job.remote).second)});
    }
  }
  if (!BeginFile(entry, Text("Uploading File."), file.InitialSize())) return Outcome::Cancelled();
  Outcome outcome = End(entry, mover_.Upload(file, entry.job.remote));
  if (outcome.IsDone()) KeepTime(entry.job.remote, file.InitialTime(), false);
  if (outcome.IsDone() && entry.inFolder) {
    ++row_->Progress().files;
    row_->Progress().changed = true;
  }
  return outcome;
}

// Lets the browser window show what its directory has gained; a folder has no size.
void FileTransfer::TellAdded(const TransferJob& job, bool folder) {
  const auto [directory, name] = SplitPath(job.remote);
  Message added("ADDI"_what);
  added.AddString("FileName", name);
  added.AddString("Path", directory);
  added.AddString("Type", folder ? "d" : "f");
  if (!folder) added.AddInt64("fSize", row_->Progress().done.load());
  row_->PostMessage(std::move(added));
}

}  // namespace corvane
