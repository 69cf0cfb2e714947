#include "workers/FileTransfer.h"

#include <exception>
#include <utility>

#include "workers/Notices.h"

namespace corvane {

FileTransfer::FileTransfer(std::shared_ptr<TransferUi> row, transferStruct description,
                           std::shared_ptr<RemoteSession> session,
                           std::shared_ptr<BrowserUi> window)
    : row_(std::move(row)),
      description_(std::move(description)),
      session_(std::move(session)),
      window_(std::move(window)),
      mover_(*session_, row_->Progress(), CancelFlag(), description_.bufferSize, !window_),
      way_(*session_),
      notes_(*row_, description_.jobs.size()),
      keepsTimes_(description_.keepTimes),
      keepsFolderTimes_(description_.keepTimes) {}

// A browser's connection stays; what is under way on it while this transfer still waits for its
// turn is not this transfer's to interrupt.
void FileTransfer::Cancel() {
  MThread::Cancel();
  if (!window_) {
    session_->Close();
    return;
  }
  const MutexLock hold(lock_);
  if (working_) session_->Interrupt();
}

void FileTransfer::SetWorking(bool working) {
  const MutexLock hold(lock_);
  working_ = working;
  if (!working) session_->Resume();
}

std::int32_t FileTransfer::Execute() {
  const EngineLease lease(*session_, CancelFlag());
  if (!lease) {
    row_->SetEndState(TransferEnd::Cancelled, {});
    return 0;
  }
  SetWorking(true);
  try {
    Outcome outcome = Begin();
    if (outcome.IsDone()) outcome = description_.download ? DownloadAll() : UploadAll();
    if (Stops(outcome)) notes_.Stop();
  } catch (const std::exception& error) {
    notes_.Failed(
        {}, Outcome::LocalError(Text("The transfer could not be carried out: %1", error.what())));
    notes_.Stop();
  }
  SetWorking(false);
  Finish();
  return 0;
}

// Connects, where the connection is this transfer's own.
Outcome FileTransfer::Begin() {
  if (Cancelled()) return Outcome::Cancelled();
  if (window_) return {};
  Outcome outcome = session_->Connect();
  if (outcome.IsDone()) return outcome;
  if (outcome.kind == Outcome::Kind::Lost) row_->SetStatus(Text("Connection failed."));
  if (outcome.kind == Outcome::Kind::Refused) row_->SetStatus(Text("Login failed."));
  notes_.Failed({}, outcome);
  // Whatever was refused, nothing can be moved.
  notes_.Stop();
  return outcome;
}

bool FileTransfer::BeginFile(const Entry& entry, const Text& status, std::int64_t total) {
  TransferProgress& progress = row_->Progress();
  progress.total = total;
  progress.start = 0;
  progress.done = 0;
  const std::string& path = entry.job.remote;
  return row_->BeginFile(path.substr(path.rfind('/') + 1)) &&
         (!window_ || window_->SetStatus(status));
}

Outcome FileTransfer::End(const Entry& entry, Outcome outcome) {
  busyInARow_ = outcome.kind == Outcome::Kind::Busy ? busyInARow_ + 1 : 0;
  if (outcome.IsDone()) {
    if (!outcome.text.IsEmpty()) notes_.Note(Text("%1: %2", entry.shown, outcome.text));
    return outcome;
  }
  if (Cancelled()) return Outcome::Cancelled();
  if (outcome.kind == Outcome::Kind::Lost) {
    outcome.text = Text("The connection was lost: %1", outcome.text.Reason());
  }
  notes_.Failed(entry.shown, outcome);
  return outcome;
}

bool FileTransfer::Stops(const Outcome& outcome) const {
  switch (outcome.kind) {
    case Outcome::Kind::Done:
    case Outcome::Kind::Refused:
    case Outcome::Kind::LocalError: return Cancelled();
    case Outcome::Kind::Busy: return Cancelled() || busyInARow_ >= kMostBusy;
    case Outcome::Kind::LocalFull:
    case Outcome::Kind::Lost:
    case Outcome::Kind::Cancelled: return true;
  }
  return true;
}

void FileTransfer::KeepTime(const std::string& remote, std::int64_t seconds, bool folder) {
  bool& keeps = folder ? keepsFolderTimes_ : keepsTimes_;
  if (!keeps || Cancelled()) return;
  const Outcome outcome = session_->SetModifiedTime(remote, seconds);
  if (outcome.kind != Outcome::Kind::Refused) return;
  keeps = false;
  const bool hasNoWay = outcome.code == 0;
  if (hasNoWay) keepsTimes_ = keepsFolderTimes_ = false;
  const Text told =
      folder && !hasNoWay
          ? Text("Folders on the server do not keep their times: %1", outcome.text.Reason())
          : Text("Files on the server do not keep their times: %1", outcome.text.Reason());
  OwnerUi& owner = window_ ? static_cast<OwnerUi&>(*window_) : *row_;
  owner.AppendLog(told.English() + "\n");
}

void FileTransfer::Finish() {
  const bool finished = notes_.AllDone() && !Cancelled();
  const auto state = finished      ? TransferEnd::Finished
                     : Cancelled() ? TransferEnd::Cancelled
                                   : TransferEnd::Failed;
  if (window_) {
    window_->SetStatus(finished ? Text("Transfer Complete.") : Text("Transfer Interupted."));
    if (session_->IsLost()) TellLoss(*window_, session_->Host(), session_->HowLost());
  }
  row_->SetEndState(state, state == TransferEnd::Failed ? notes_.Summary() : Text());
  if (finished) row_->PlaySound(description_.download ? Sound::Downloaded : Sound::Uploaded);
  if (window_) return;
  if (finished) session_->Quit();
  session_->Close();
}

}  // namespace corvane
