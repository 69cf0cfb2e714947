#include <algorithm>
#include <filesystem>
#include <vector>

#include "net/NLException.h"
#include "util/Encodings.h"
#include "util/ErrorText.h"
#include "util/LocalFile.h"
#include "util/LocalFolder.h"
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
std::string_view LeftOut(const fs::directory_entry& entry) {
  std::error_code error;
  const fs::file_type own = entry.symlink_status(error).type();
  const fs::file_type type = entry.status(error).type();
  if (own == fs::file_type::not_found || type == fs::file_type::regular) return {};
  if (own == fs::file_type::symlink)
    return type == fs::file_type::directory ? "a link to a folder" : "a link to no file";
  return own == fs::file_type::directory ? "" : "a special file";
}

}  // namespace

void FileTransfer::UploadAll() {
  for (const std::string& path : description_.localItems) {
    // A folder may be named with a slash at its end.
    fs::path chosen(path);
    if (!chosen.has_filename()) chosen = chosen.parent_path();
    const std::string name = chosen.filename();
    const Entry entry{name, chosen, DisplayText(name), -1, false};
    std::error_code ignored;
    const bool folder = fs::is_directory(chosen, ignored);
    const Step step = folder ? uDirectory(entry) : UploadFile(entry);
    if (step == Step::Stopped) return;
    if (step == Step::Failed && folder)
      Note(entry.shown + ": The rest of this folder was not sent.");
    if (step == Step::Done)
      TellAdded(name, folder ? std::nullopt : std::optional(row_->Progress().done.load()));
  }
}

FileTransfer::Step FileTransfer::uDirectory(const Entry& entry) {
  if (!BeginEntry(entry)) return Step::Stopped;
  if (!IsSafeLocalName(entry.name)) return Fail(entry, "The folder has no name of its own.");
  // One that is there already refuses to be made and is entered all the same.
  const int made = engine_.SendCommand("MKD " + entry.name + "\n");
  const std::string refusal = made >= 400 ? engine_.LastReplyText() : std::string();
  if (!engine_.EnterDirectory(walk_, entry.name, true))
    return Fail(entry, refusal.empty() ? engine_.LastFailure() : refusal);
  return LeaveDirectory(entry, UploadEntries(entry));
}

FileTransfer::Step FileTransfer::UploadEntries(const Entry& entry) {
  std::error_code error;
  const std::vector<fs::directory_entry> entries = EntriesOf(entry.local, error);
  if (error) return Fail(entry, "Could not read the folder: " + ErrorText(error.value()));
  for (const fs::directory_entry& found : entries) {
    const std::string name = found.path().filename();
    const Entry inside{name, found.path(), entry.shown + "/" + DisplayText(name), -1, true};
    if (const std::string_view kind = LeftOut(found); !kind.empty()) {
      Note("Left out: " + inside.shown + " (" + std::string(kind) + ")");
      continue;
    }
    std::error_code ignored;
    const Step step = found.is_directory(ignored) ? uDirectory(inside) : UploadFile(inside);
    if (step != Step::Done) return step;
  }
  return Step::Done;
}

FileTransfer::Step FileTransfer::UploadFile(const Entry& entry) {
  if (!BeginEntry(entry)) return Step::Stopped;
  LocalFile file;
  if (const int error = file.OpenForReading(entry.local); error != 0) {
    row_->SetTrailing("  *Could not open file for reading!*");
    return Fail(entry, "Could not read " + DisplayText(entry.local) + ": " + ErrorText(error));
  }
  if (!BeginFile(entry, "Uploading File.", file.InitialSize(), 0))
    return Stop(entry, "The window is closing.");
  const bool stored = engine_.PrepareTransfer() && !Cancelled() &&
                      engine_.Upload(*row_, file, entry.name, CancelFlag()) == 1;
  return stored ? EndFile(entry) : Fail(entry, engine_.LastFailure());
}

// Lets the browser window show what its directory has gained; a folder has no size.
void FileTransfer::TellAdded(const std::string& name, std::optional<std::int64_t> size) {
  Message added("ADDI"_what);
  added.AddString("FileName", name);
  added.AddString("Path", description_.remoteDirectory);
  added.AddString("Type", size ? "f" : "d");
  if (size) added.AddInt64("fSize", *size);
  row_->PostMessage(std::move(added));
}

}  // namespace corvane
