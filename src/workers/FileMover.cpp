#include "workers/FileMover.h"

#include <algorithm>
#include <chrono>
#include <exception>
#include <utility>

#include "kit/Background.h"
#include "remote/RemotePath.h"
#include "util/Encodings.h"
#include "util/ErrorText.h"
#include "util/PartFile.h"
#include "workers/FileDownload.h"
#include "workers/FileUpload.h"
#include "workers/TreePlanner.h"

namespace corvane {
namespace {

using Kind = Outcome::Kind;

std::int64_t Now() {
  using namespace std::chrono;
  return duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count();
}

constexpr std::size_t kLongestName = 4096;

// A name that leads elsewhere is refused. What had a part file's name would be removed together
// with the part files of killed transfers.
Outcome CheckName(const JobBoard::Work& work, const transferStruct& what) {
  if (work.InFolder() && SplitPath(work.job.remote).second.size() > kLongestName)
    return Outcome::LocalError(Text("The name is longer than %1 bytes.", kLongestName));
  if (!what.download) {
    if (!work.InFolder() || Encoded(work.name, what.site.encoding)) return {};
    return Outcome::LocalError(
        Text("The name has letters that %1 does not have.", what.site.encoding));
  }
  if (work.job.kind == RemoteEntry::Kind::Directory) {
    if (IsSafeLocalName(work.name)) return {};
    return Outcome::LocalError(Text("The name \"%1\" cannot be a local folder's.", work.name));
  }
  if (IsSafeLocalName(work.name) && !PartFile::IsPartName(work.name)) return {};
  return Outcome::LocalError(Text("The name \"%1\" cannot be used for a local file.", work.name));
}

}  // namespace

FileMover::FileMover(TransferRun& run, SessionPool::Lease lease)
    : run_(run), lease_(std::move(lease)), session_(lease_.Session()), own_(true) {}

FileMover::FileMover(TransferRun& run, std::shared_ptr<RemoteSession> session)
    : run_(run), session_(std::move(session)), own_(false) {}

bool FileMover::Start(std::function<void()> ended) {
  tellEnd_ = std::move(ended);
  return Background::Start("mover", [this] { Work(); });
}

void FileMover::Stop() {
  leaves_ = true;
  CloseOwn();
}

void FileMover::GiveUp() {
  gaveUp_ = true;
  CloseOwn();
  if (!own_) session_->Interrupt();
}

// Once it is given back it may be somebody else's.
void FileMover::CloseOwn() {
  const MutexLock hold(lock_);
  if (own_ && !returned_) session_->Close();
}

std::int64_t FileMover::Silence() const {
  const std::int64_t since = movingSince_;
  if (since == 0) return 0;
  return std::max<std::int64_t>(0, Now() - std::max(since, heard_.load()));
}

void FileMover::Work() {
  try {
    result_ = Connect();
    if (result_.IsDone()) result_ = CarryAll();
  } catch (const std::exception& error) {
    result_ = Outcome::LocalError(Text("The transfer could not be carried out: %1", error.what()));
    result_.kind = Kind::LocalFull;
  }
  {
    const MutexLock hold(lock_);
    returned_ = true;
  }
  lease_.GiveBack();
  // Once this is set the object may go at any moment.
  const auto tell = std::move(tellEnd_);
  ended_ = true;
  tell();
}

Outcome FileMover::Connect() {
  Outcome outcome;
  if (own_ && (session_->IsLost() || !session_->IsAlive())) outcome = session_->Connect();
  connected_ = outcome.IsDone();
  return outcome;
}

Outcome FileMover::CarryAll() {
  while (!leaves_) {
    const auto work = run_.board.Take(near_);
    if (!work) return {};
    near_ = work->parent;
    std::int64_t size = -1;
    Outcome outcome;
    try {
      outcome = Carry(*work, size);
    } catch (...) {
      run_.board.PutBack(work->id);
      throw;
    }
    movingSince_ = 0;
    // A file that came is then not where it is looked for; a directory is looked at before it is
    // opened on the board, for then its files are.
    const bool file = work->job.kind != RemoteEntry::Kind::Directory;
    if ((file && outcome.IsDone()) || outcome.kind == Kind::LocalError) {
      if (Outcome target = run_.LookForTarget(); !target.IsDone()) outcome = std::move(target);
    }
    if (gaveUp_ && !outcome.IsDone())
      outcome = {Kind::Lost, 0, Text("Nothing comes from the server any more.")};
    if (Settle(*work, outcome, size)) return outcome;
  }
  return {};
}

Outcome FileMover::Carry(const JobBoard::Work& work, std::int64_t& size) {
  if (run_.cancelled) return Outcome::Cancelled();
  Outcome named = CheckName(work, run_.what);
  if (!named.IsDone()) return named;
  if (work.job.kind != RemoteEntry::Kind::Directory) return CarryFile(work, size);
  const LocalFolder* above = nullptr;
  if (run_.what.download) {
    if (const int error = OpenFolder(SplitPath(work.job.local).first, above); error != 0) {
      Outcome outcome = WriteFailure(error);
      outcome.text = Text("Could not make the folder: %1", ErrorText(error));
      return outcome;
    }
  }
  TreePlanner planner(run_, *session_);
  Outcome outcome = planner.Plan(work, above != nullptr ? *above : run_.target);
  if (outcome.IsDone()) near_ = work.id;
  if (planner.HeldNothing()) Complete(work);
  return outcome;
}

Outcome FileMover::CarryFile(const JobBoard::Work& work, std::int64_t& size) {
  heard_ = 0;
  movingSince_ = Now();
  Outcome outcome;
  if (run_.what.download) {
    const LocalFolder* folder = nullptr;
    if (const int error = OpenFolder(SplitPath(work.job.local).first, folder); error != 0)
      return WriteFailure(error);
    FileVersion before;
    if (run_.what.tracked) outcome = AskVersion(work, Thorough::No, before);
    if (!outcome.IsDone()) return outcome;
    movingSince_ = Now();
    FileDownload download(run_, *session_, work, own_, heard_);
    outcome = download.Fetch(*folder);
    size = download.Size();
    run_.NoteReach();
    if (outcome.IsDone() && run_.what.tracked) outcome = TellFetched(work, before);
  } else {
    FileUpload upload(run_, *session_, work, own_, heard_);
    outcome = upload.Send();
    size = upload.Size();
    run_.NoteReach();
    if (outcome.trouble == Outcome::Trouble::Changed) {
      TellVersion(work, upload.Found(), true);
    } else if (outcome.IsDone() && run_.what.tracked) {
      outcome = TellSent(work, size);
    }
  }
  return outcome;
}

Outcome FileMover::AskVersion(const JobBoard::Work& work, Thorough thorough, FileVersion& version) {
  movingSince_ = 0;
  return corvane::AskVersion(*session_, work.job.remote, thorough, run_.cancelled, version);
}

// What was changed while it came may be half of the one and half of the other.
Outcome FileMover::TellFetched(const JobBoard::Work& work, const FileVersion& before) {
  FileVersion now;
  if (Outcome asked = AskVersion(work, Thorough::Yes, now); !asked.IsDone()) return asked;
  if (!MayBeSame(before, now)) {
    return {Kind::Busy, 0, Text("The file was changed on the server while it was fetched.")};
  }
  TellVersion(work, now, false);
  return {};
}

// What cannot be asked now is asked with the next try, which finds that all has arrived.
Outcome FileMover::TellSent(const JobBoard::Work& work, std::int64_t size) {
  FileVersion now;
  Outcome asked = AskVersion(work, Thorough::Yes, now);
  if (asked.kind == Kind::Refused) now = {.size = size};
  if (!asked.IsDone() && asked.kind != Kind::Refused) return asked;
  const bool ours = now.there && (now.size < 0 || now.size == size);
  TellVersion(work, now, !ours);
  if (ours) return {};
  Outcome changed{
      Kind::Refused, 0,
      Text("\"%1\" has been changed on the server.", SplitPath(work.job.remote).second)};
  changed.trouble = Outcome::Trouble::Changed;
  return changed;
}

void FileMover::TellVersion(const JobBoard::Work& work, const FileVersion& version, bool changed) {
  Message message("VRSN"_what);
  message.AddString("path", work.job.remote);
  message.AddBool("changed", changed);
  AddVersion(message, version);
  run_.row.PostMessage(std::move(message));
}

bool FileMover::Settle(const JobBoard::Work& work, const Outcome& outcome, std::int64_t size) {
  const bool directory = work.job.kind == RemoteEntry::Kind::Directory;
  const bool alone = run_.board.ChosenCount() == 1 && !work.InFolder();
  JobBoard& board = run_.board;
  std::optional<JobBoard::Work> above;
  if (run_.cancelled && !outcome.IsDone()) {
    board.PutBack(work.id);
    return true;
  }
  switch (outcome.kind) {
    case Kind::Done:
      if (!outcome.text.IsEmpty()) {
        run_.notes.Note(directory ? Text("Left out: %1 (%2)", work.shown, outcome.text)
                                  : Text("%1: %2", work.shown, outcome.text));
      } else if (directory) {
        return false;  // what was found in it ends it
      } else {
        board.Describe(work.id, RemoteEntry::Kind::File, size);
        if (!work.InFolder()) TellAdded(work, size);
      }
      above = board.End(work.id, run_.syncsAtEnd ? JobState::Moved : JobState::Done);
      break;
    case Kind::Refused:
    case Kind::LocalError:
      run_.notes.Failed(work.shown, outcome, alone);
      above = board.End(work.id, JobState::Failed);
      break;
    case Kind::Busy:
      board.PutBack(work.id);
      run_.NoteDelay(outcome);
      return false;
    case Kind::LocalFull:
      run_.notes.Failed(work.shown, outcome, alone);
      board.PutBack(work.id);
      return true;
    case Kind::Lost:
    case Kind::Cancelled: board.PutBack(work.id); return true;
  }
  if (above) Complete(*above);
  return false;
}

// A directory ends with the last thing in it, and may be the last in the one above.
void FileMover::Complete(const JobBoard::Work& directory) {
  TreePlanner planner(run_, *session_);
  for (std::optional<JobBoard::Work> at = directory; at;) {
    const LocalFolder* itself = nullptr;
    const bool known = !run_.what.download || OpenFolder(at->job.local, itself) == 0;
    if (known && !run_.cancelled) planner.Complete(*at, itself != nullptr ? *itself : run_.target);
    if (!at->InFolder()) TellAdded(*at, -1);
    at = run_.board.End(at->id, run_.syncsAtEnd ? JobState::Moved : JobState::Done);
  }
}

// Step by step from the target, so that nothing outside is reached.
int FileMover::OpenFolder(const std::string& local, const LocalFolder*& folder) {
  const std::string top = WithoutTrailingSlash(run_.what.targetFolder);
  const std::string below = local.size() > top.size() ? local.substr(top.size() + 1) : "";
  folder = below.empty() ? &run_.target : &folder_;
  if (below.empty() || below == folderPath_) return 0;
  folderPath_.clear();
  const LocalFolder* above = &run_.target;
  LocalFolder opened;
  for (std::size_t begin = 0; begin < below.size();) {
    const std::size_t end = std::min(below.find('/', begin), below.size());
    LocalFolder next;
    if (const int error = next.Enter(*above, below.substr(begin, end - begin)); error != 0)
      return error;
    opened = std::move(next);
    above = &opened;
    begin = end + 1;
  }
  folder_ = std::move(opened);
  folderPath_ = below;
  return 0;
}

// Lets the browser window show what its directory has gained; a folder has no size.
void FileMover::TellAdded(const JobBoard::Work& work, std::int64_t size) {
  if (run_.what.download) return;
  const auto [directory, name] = SplitPath(work.job.remote);
  const bool folder = work.job.kind == RemoteEntry::Kind::Directory;
  Message added("ADDI"_what);
  added.AddString("FileName", name);
  added.AddString("Path", directory);
  added.AddString("Type", folder ? "d" : "f");
  if (!folder) added.AddInt64("fSize", size);
  run_.row.PostMessage(std::move(added));
}

}  // namespace corvane
