#include "app/transfers/TransferItem.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "app/transfers/TransferTexts.h"
#include "remote/RemotePath.h"

namespace corvane {

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

double TransferItem::Fraction() const {
  if (Finished()) return 1;
  const TransferProgress& progress = link_->Progress();
  const double total = static_cast<double>(progress.total.load());
  if (total <= 0) return 0;
  return std::clamp(static_cast<double>(progress.start + progress.done) / total, 0.0, 1.0);
}

}  // namespace corvane
