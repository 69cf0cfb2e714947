#include "app/transfers/TransferItem.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "app/transfers/TransferTexts.h"
#include "remote/RemotePath.h"

namespace corvane {
namespace {

constexpr std::size_t kNotesShownAtOnce = 5;

}  // namespace

TransferItem::TransferItem(transferStruct description, TransferListener listener)
    : description_(std::move(description)),
      listener_(std::move(listener)),
      link_(std::make_shared<TransferLink>(*this)) {
  link_->Progress().total = std::max<std::int64_t>(description_.size, 0);
}

TransferItem::~TransferItem() {
  LetGo();
}

void TransferItem::LetGo() {
  link_->Close();
  if (worker_ != nullptr) worker_->Cancel();
}

void TransferItem::Start(const MakeWorker& make) {
  worker_ = make(link_, description_);
  if (!worker_->Run()) {
    link_->SetEndState(TransferEnd::Failed, Text("The system has no thread to give."));
  }
}

bool TransferItem::CanRetry() const {
  return settled_ && Failed() && description_.jobs.size() == 1;
}

bool TransferItem::HasCome() const {
  const TransferProgress& progress = link_->Progress();
  return progress.done > 0 || progress.files > 0;
}

// What was made under a free name is the transfer's own: what is there of it is gone on with, and
// on the server, where nothing is compared, written anew. Where nothing has come, the name is still
// to be free.
void TransferItem::Retry(const MakeWorker& make) {
  if (!CanRetry()) return;
  Policy& policy = description_.jobs.front().policy;
  if (policy == Policy::CreateNew && HasCome()) {
    policy = description_.download ? Policy::Resume : Policy::Replace;
  }
  link_->Close();
  link_ = std::make_shared<TransferLink>(*this);
  link_->Progress().total = std::max<std::int64_t>(description_.size, 0);
  report_ = {};
  notes_.clear();
  settled_ = false;
  open_ = false;
  Q_EMIT Begun(this);
  Start(make);
  Q_EMIT Changed(this);
}

TransferState TransferItem::State() const {
  if (Running()) return TransferState::Running;
  if (Finished()) return TransferState::Done;
  if (WasCancelled()) return TransferState::Cancelled;
  return HasNotes() ? TransferState::Partly : TransferState::Failed;
}

void TransferItem::SetOpen(bool open) {
  open_ = open;
  Q_EMIT Changed(this);
}

void TransferItem::Cancel() {
  if (!Running()) return;
  if (worker_ != nullptr) worker_->Cancel();
  report_.end = TransferEnd::Cancelled;
  Q_EMIT Ended(this);
  Q_EMIT Changed(this);
}

bool TransferItem::TakeChanged() {
  if (!link_->Progress().changed.exchange(false)) return false;
  link_->Drain();
  return true;
}

void TransferItem::Report(TransferReport report, std::vector<Text> notes) {
  const bool ran = Running();
  const bool settles = !settled_ && report.end.has_value();
  // The worker's own word on how it ended comes after a cancellation and replaces it.
  if (!report.end.has_value()) report.end = report_.end;
  report_ = std::move(report);
  std::ranges::move(notes, std::back_inserter(notes_));
  if (settles) {
    settled_ = true;
    worker_.reset();
    open_ = Failed() && notes_.size() <= kNotesShownAtOnce;
    LogNotes();
  }
  if (ran == Running() && !settles) return;
  if (ran && !Running()) Q_EMIT Ended(this);
  Q_EMIT Changed(this);
  if (settles) Q_EMIT Settled(this);
}

void TransferItem::LogNotes() const {
  if (!listener_.noted) return;
  for (const Text& note : notes_) listener_.noted(note);
}

void TransferItem::MessageReceived(const Message& message) {
  if (message.what == "ADDI"_what && listener_.arrived) listener_.arrived(message);
}

TransferNews TransferItem::News() const {
  const TransferTexts texts(*this);
  return {.download = IsDownload(),
          .finished = Finished(),
          .cancelled = WasCancelled(),
          .file = texts.FileName(),
          .server = texts.ServerLine(),
          .failure = texts.FailureLine()};
}

std::string TransferItem::LocalPath() const {
  return description_.jobs.size() == 1 ? description_.jobs.front().local
                                       : PathBelow(description_.targetFolder, "");
}

double TransferItem::Rate() const {
  const TransferProgress& progress = link_->Progress();
  const double seconds = static_cast<double>(progress.elapsed.load()) / 1e6;
  return seconds > 0 ? static_cast<double>(progress.done.load()) / seconds : 0;
}

std::int64_t TransferItem::Left() const {
  const TransferProgress& progress = link_->Progress();
  if (IsSeveral() || progress.total <= 0) return -1;
  return std::max<std::int64_t>(progress.total - progress.start - progress.done, 0);
}

// An upload learns only on its way what is a folder.
bool TransferItem::IsSeveral() const {
  const std::vector<TransferJob>& jobs = description_.jobs;
  return jobs.size() > 1 || link_->Progress().files > 0 ||
         (jobs.size() == 1 && jobs.front().kind == RemoteEntry::Kind::Directory);
}

double TransferItem::Fraction() const {
  if (Finished()) return 1;
  const TransferProgress& progress = link_->Progress();
  const double total = static_cast<double>(progress.total.load());
  if (total <= 0) return 0;
  return std::clamp(static_cast<double>(progress.start + progress.done) / total, 0.0, 1.0);
}

}  // namespace corvane
