#include <cerrno>

#include "net/NLException.h"
#include "util/Encodings.h"
#include "util/ErrorText.h"
#include "util/LocalFile.h"
#include "util/LocalFolder.h"
#include "workers/FileTransfer.h"

namespace corvane {
namespace {

bool LeadsElsewhere(const std::string& name) {
  return name.find('/') != std::string::npos;
}

// Where one file does not fit none after it does.
bool IsFull(int error) {
  return error == ENOSPC || error == EDQUOT;
}

}  // namespace

void FileTransfer::DownloadAll() {
  current_.shown = DisplayText(description_.targetFolder);
  LocalFolder target;
  if (const int error = target.Open(description_.targetFolder); error != 0) {
    Stop(current_, "Could not open " + current_.shown + ": " + ErrorText(error));
    return;
  }
  for (const fileStruct& item : description_.items) {
    const std::string& local = item.displayName.empty() ? item.name : item.displayName;
    const Entry entry{item.name, local, DisplayText(local), item.size >= 0 ? item.size : -1, false};
    const Step step =
        item.type == kDirectory ? dDirectory(target, entry) : DownloadFile(target, entry);
    if (step == Step::Stopped) return;
  }
}

FileTransfer::Step FileTransfer::dDirectory(const LocalFolder& above, const Entry& entry) {
  if (!BeginEntry(entry)) return Step::Stopped;
  if (!IsSafeLocalName(entry.local))
    return Fail(entry, "The name \"" + DisplayText(entry.local) + "\" cannot be a local folder's.");
  if (LeadsElsewhere(entry.name)) return Fail(entry, "The name leads elsewhere.");
  if (!engine_.EnterDirectory(walk_, entry.name, true)) return Fail(entry, engine_.LastFailure());
  return LeaveDirectory(entry, DownloadEntries(above, entry));
}

// What stands in the working directory. What fails in it does not make the directory fail.
FileTransfer::Step FileTransfer::DownloadEntries(const LocalFolder& above, const Entry& entry) {
  LocalFolder folder;
  if (const int error = folder.Enter(above, entry.local); error != 0) {
    const std::string why = "Could not make the folder: " + ErrorText(error);
    return IsFull(error) ? Stop(entry, why) : Fail(entry, why);
  }
  if (!engine_.PrepareTransfer()) return Stop(entry, engine_.LastFailure());
  const MFtp::Listing listing = engine_.GetListing();
  if (!listing.whole) return Fail(entry, engine_.LastFailure());
  for (const MFtp::WalkEntry& found : engine_.Parse(listing.text)) {
    const Entry inside{found.name, found.name, entry.shown + "/" + DisplayText(found.name),
                       found.size, true};
    Step step = Step::Done;
    if (found.type == kDirectory)
      step = dDirectory(folder, inside);
    else if (found.type == kFile)
      step = DownloadFile(folder, inside);
    else
      Note("Left out: " + inside.shown + " (a link or a special file)");
    if (step == Step::Stopped || Cancelled()) return Step::Stopped;
  }
  return Step::Done;
}

FileTransfer::Step FileTransfer::DownloadFile(const LocalFolder& folder, const Entry& entry) {
  if (!BeginEntry(entry)) return Step::Stopped;
  const std::string shown = DisplayText(entry.local);
  if (!IsSafeLocalName(entry.local))
    return Fail(entry, "The name \"" + shown + "\" cannot be used for a local file.");
  LocalFile file;
  bool resume = !description_.overwrite;
  const int error = OpenTarget(folder, entry, file, resume);
  if (error == EWOULDBLOCK)
    return Fail(entry, "Another transfer is writing " + shown + " already.");
  if (error != 0) {
    const std::string why = "Could not open " + shown + ": " + ErrorText(error);
    return IsFull(error) ? Stop(entry, why) : Fail(entry, why);
  }
  if (resume && entry.size >= 0 && file.InitialSize() > entry.size)
    return Fail(entry, "The local file is longer than the server's.");

  const int result = Fetch(file, entry, resume);
  if (result != 1)
    return result == 0 ? Fail(entry, engine_.LastFailure()) : Stop(entry, engine_.LastFailure());
  if (const int late = file.Commit(Durability::Now); late != 0)
    return Stop(entry, "Could not write the file: " + ErrorText(late));
  return EndFile(entry);
}

// In a folder that is resumed some files are whole, some begun, and some not there yet.
int FileTransfer::OpenTarget(const LocalFolder& folder, const Entry& entry, LocalFile& file,
                             bool& resume) {
  if (resume) {
    const int error = file.Open(folder, entry.local, LocalFile::Mode::Resume);
    if (error != ENOENT || !entry.inFolder) return error;
    resume = false;
  }
  const int error = file.Open(folder, entry.local, LocalFile::Mode::CreateNew);
  return error == EEXIST ? file.Open(folder, entry.local, LocalFile::Mode::Replace) : error;
}

// What MFtp::Download answers.
int FileTransfer::Fetch(LocalFile& file, const Entry& entry, bool resume) {
  MFtp::DownloadJob job{entry.name, entry.size, resume ? file.InitialSize() : 0, !resume};
  if (!BeginFile(entry, "Downloading File.", std::max<std::int64_t>(entry.size, 0), job.offset))
    return -1;
  if (!engine_.PrepareTransfer() || Cancelled()) return -1;
  if (resume) {
    // Without a size nothing would tell a server that begins at the start all the same.
    if (job.expected < 0) job.expected = engine_.GetFileSize(entry.name);
    // A server that cannot resume gives the whole file again.
    if (engine_.SendCommand("REST " + std::to_string(job.offset) + "\n") != 350) {
      job.offset = 0;
      job.empty = true;
      row_->Progress().start = 0;
    }
  }
  if (Cancelled()) return -1;
  return engine_.Download(*row_, file, job, CancelFlag());
}

}  // namespace corvane
