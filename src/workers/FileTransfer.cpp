#include "workers/FileTransfer.h"

#include <exception>
#include <utility>

#include "ftp/EngineLease.h"
#include "net/NLException.h"
#include "settings/ProcessSettings.h"
#include "util/Encodings.h"

namespace corvane {

FileTransfer::FileTransfer(std::shared_ptr<TransferUi> row, transferStruct description,
                           bool sameConnection)
    : row_(std::move(row)),
      description_(std::move(description)),
      engine_(*description_.engine),
      sameConnection_(sameConnection) {}

// A browser's connection stays; what is under way on it while this transfer still waits for its
// turn is not this transfer's to interrupt.
void FileTransfer::Cancel() {
  MThread::Cancel();
  if (!sameConnection_) {
    engine_.Close();
    return;
  }
  const MutexLock hold(lock_);
  if (working_) engine_.AbortData();
}

void FileTransfer::SetWorking(bool working) {
  if (sameConnection_) engine_.HurryWhen(working ? &CancelFlag() : nullptr);
  const MutexLock hold(lock_);
  working_ = working;
}

std::int32_t FileTransfer::Execute() {
  const EngineLease lease(engine_);
  SetWorking(true);
  try {
    if (!Begin()) {
      stopped_ = true;
    } else if (description_.download) {
      DownloadAll();
    } else {
      UploadAll();
    }
  } catch (const NLException& error) {
    lostWhy_ = Reason(error);
    Stop(current_, "The connection was lost: " + lostWhy_);
  } catch (const std::exception& error) {
    Stop(current_, std::string("The transfer could not be carried out: ") + error.what());
  }
  Finish();
  SetWorking(false);
  return 0;
}

// Logs in on a connection of its own and goes where the work is.
bool FileTransfer::Begin() {
  if (Cancelled()) return false;
  if (sameConnection_) {
    // A change of directory may have come first.
    if (engine_.StandsIn(description_.remoteDirectory)) return true;
    why_ = "The window has gone to another directory meanwhile.";
    return false;
  }
  if (engine_.Login() != 1) {
    why_ = engine_.LastFailure();
    return false;
  }
  engine_.GetServerType();
  if (description_.remoteDirectory.empty()) return true;
  const int code = engine_.ChangeDir(description_.remoteDirectory);
  if (code != 0 && code < 400) return true;
  why_ = code == 0 ? engine_.LastFailure() : engine_.LastReplyText();
  return false;
}

// False when there is no use in beginning.
bool FileTransfer::BeginEntry(const Entry& entry) {
  if (Cancelled()) return false;
  current_ = entry;
  ++entries_;
  return true;
}

bool FileTransfer::BeginFile(const Entry& entry, std::string_view label, std::int64_t total,
                             std::int64_t start) {
  TransferProgress& progress = row_->Progress();
  progress.total = total;
  progress.start = start;
  progress.done = 0;
  return row_->BeginFile(entry.name) && (!sameConnection_ || engine_.UpdateStatus(label));
}

FileTransfer::Step FileTransfer::EndFile(const Entry& entry) {
  if (entry.inFolder) {
    ++row_->Progress().files;
    row_->Progress().changed = true;
  }
  return Step::Done;
}

// Notes what became of the entry. One that is all there is gives its reason as the transfer's.
FileTransfer::Step FileTransfer::Fail(const Entry& entry, const std::string& why) {
  if (Cancelled()) return Step::Stopped;
  ++failed_;
  failedEntry_ = entry.shown;
  why_ = why;
  const std::size_t chosen =
      description_.download ? description_.items.size() : description_.localItems.size();
  if (entries_ > 1 || (entries_ == 1 && chosen > 1)) Note(entry.shown + ": " + why);
  stopped_ = stopped_ || engine_.Lost() || walk_.lost;
  return stopped_ ? Step::Stopped : Step::Failed;
}

FileTransfer::Step FileTransfer::Stop(const Entry& entry, const std::string& why) {
  Fail(entry, why);
  stopped_ = true;
  return Step::Stopped;
}

// The way up from a folder that was entered. One that stops goes back at its end, in one step.
FileTransfer::Step FileTransfer::LeaveDirectory(const Entry& entry, Step step) {
  if (step == Step::Stopped || engine_.LeaveDirectory(walk_)) return step;
  return Stop(entry, engine_.LastFailure());
}

void FileTransfer::Note(const std::string& text) {
  if (++notes_ <= kMaxNotes) row_->NoteEntry(text);
  if (notes_ == kMaxNotes) row_->NoteEntry("What follows is not listed any more.");
}

std::string FileTransfer::Summary() const {
  if (failed_ == 0 || entries_ <= 1) return why_;
  const std::string count =
      std::to_string(failed_) + " of " + std::to_string(entries_) + " entries failed";
  if (stopped_) return count + "; stopped at " + failedEntry_ + ": " + why_;
  return failed_ == 1 ? count + ": " + failedEntry_ + ": " + why_ : count + ".";
}

void FileTransfer::Finish() {
  const SettingsValues settings = ProcessSettings::Get();
  const bool finished = !stopped_ && failed_ == 0 && !Cancelled();
  const auto state = finished      ? TransferEnd::Finished
                     : Cancelled() ? TransferEnd::Cancelled
                                   : TransferEnd::Failed;
  if (sameConnection_)
    engine_.UpdateStatus(finished ? "Transfer Complete." : "Transfer Interupted.");
  row_->SetEndState(state, state == TransferEnd::Failed ? Summary() : std::string());
  if (finished) row_->PlaySound(description_.download ? settings.dwnldsnd : settings.upldsnd);
  try {
    if (sameConnection_)
      HandBack();
    else if (finished)
      engine_.Quit();
  } catch (const NLException& error) {
    // Of its own connection all that mattered has been confirmed already.
    if (sameConnection_) lostWhy_ = Reason(error);
  }
  if (!sameConnection_)
    engine_.Close();
  else if (engine_.Lost())
    engine_.ReportLost(NLException("FileTransfer::Finish", lostWhy_.empty() ? why_ : lostWhy_));
}

// Leaves the browser's connection as it was found: in its directory and in step.
void FileTransfer::HandBack() {
  if (engine_.Lost()) return;
  if (stopped_ || Cancelled()) engine_.ReturnToStart(walk_);
  engine_.ReadPendingReplies();
}

}  // namespace corvane
