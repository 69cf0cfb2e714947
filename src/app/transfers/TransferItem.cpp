#include "app/transfers/TransferItem.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "app/transfers/TransferTexts.h"
#include "remote/RemotePath.h"

namespace corvane {
namespace {

using namespace std::chrono_literals;

constexpr std::size_t kNotesShownAtOnce = 5;
constexpr auto kPatience = 5s;  // without a byte, before that is worth a word

}  // namespace

TransferItem::TransferItem(transferStruct description, TransferListener listener, RowId id,
                           std::shared_ptr<JobBoard> board)
    : id_(id),
      description_(std::move(description)),
      chosen_(static_cast<int>(description_.jobs.size())),
      listener_(std::move(listener)),
      board_(board ? std::move(board) : std::make_shared<JobBoard>(description_)) {
  if (chosen_ > 0) first_ = std::move(description_.jobs.front());
  description_.jobs.clear();
  BeginProgress();
}

TransferItem::~TransferItem() {
  LetGo();
  if (listener_.restated && !HasEnded()) listener_.restated(RowState::Cancelled, {});
}

void TransferItem::LetGo() {
  link_->Close();
  Stop();
}

void TransferItem::Stop() {
  reached_ = There();
  if (worker_ != nullptr) worker_->Cancel();
}

void TransferItem::Start(const MakeWorker& make) {
  if (std::exchange(retries_, false)) {
    board_->Begin(true);
    notes_.clear();
    logged_ = 0;
    open_ = false;
  }
  reached_ = There();
  link_->Close();
  report_ = {};
  pace_ = {};
  BeginProgress();
  worker_ = make(link_, description_, board_);
  if (!worker_->Run()) {
    link_->SetEndState(TransferEnd::Failed, Text("The system has no thread to give."));
  }
}

// A worker sees what is done already, and so does whoever looks before it has begun.
void TransferItem::BeginProgress() {
  link_ = std::make_shared<TransferLink>(*this);
  const JobBoard::Count count = board_->Counted();
  TransferProgress& progress = link_->Progress();
  progress.there = count.doneBytes;
  progress.files = count.done;
  progress.allFiles = count.files;
  progress.total =
      count.bytes > 0 || IsSeveral() ? count.bytes : std::max<std::int64_t>(description_.size, 0);
  progress.planning = !count.complete;
}

void TransferItem::SetStanding(const RowStanding& standing) {
  if (standing == standing_) return;
  const RowState before = std::exchange(standing_, standing).state;
  if (before != standing.state) {
    if (standing.state == RowState::Failed) open_ = notes_.size() <= kNotesShownAtOnce;
    if (listener_.restated) listener_.restated(standing.state, report_.reason);
    Q_EMIT Restated(before, standing.state);
  }
  Q_EMIT Changed(this);
}

TransferState TransferItem::State() const {
  switch (standing_.state) {
    case RowState::Waiting: return TransferState::Waiting;
    case RowState::Running: return TransferState::Running;
    case RowState::Paused: return TransferState::Paused;
    case RowState::Again: return TransferState::Again;
    case RowState::Cancelled: return TransferState::Cancelled;
    case RowState::Done: return TransferState::Done;
    case RowState::Failed: break;
  }
  // What ended it before everything was tried is the news, not what had failed by then.
  const bool tried = IsSeveral() && board_->AllEnded();
  return tried && board_->Counted().failed > 0 ? TransferState::Partly : TransferState::Failed;
}

void TransferItem::SetOpen(bool open) {
  open_ = open;
  Q_EMIT Changed(this);
}

bool TransferItem::TakeChanged() {
  const int told = std::exchange(told_, Running() ? Stalled() : Seconds());
  bool changed = told != told_;
  if (Running()) {
    pace_.Feed(link_->Progress().moved, Clock::now());
    reached_ = There();
    changed = changed || pace_.Rate() > 0;
  }
  if (!link_->Progress().changed.exchange(false)) return changed;
  link_->Drain();
  return true;
}

void TransferItem::Report(TransferReport report, std::vector<Text> notes) {
  const bool settles = worker_ != nullptr && report.end.has_value();
  report_ = std::move(report);
  std::ranges::move(notes, std::back_inserter(notes_));
  if (!settles) return;
  worker_.reset();
  LogNotes();
  Q_EMIT Settled(this, *report_.end);
}

void TransferItem::LogNotes() {
  for (; logged_ < notes_.size(); ++logged_) {
    if (listener_.noted) listener_.noted(notes_[logged_]);
  }
}

void TransferItem::MessageReceived(const Message& message) {
  if (message.what == "ADDI"_what && listener_.arrived) listener_.arrived(message);
  if (message.what == "VRSN"_what && listener_.versioned) listener_.versioned(message);
  if (message.what == "LGRF"_what && listener_.loginRefused) listener_.loginRefused();
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
  return chosen_ == 1 ? first_.local : PathBelow(description_.targetFolder, "");
}

std::string TransferItem::RemotePath() const {
  return chosen_ == 1 ? first_.remote : description_.remoteDirectory;
}

// A worker counts what there is of a file only while it moves.
std::int64_t TransferItem::There() const {
  const TransferProgress& progress = link_->Progress();
  const bool counts = Running() && progress.heard != 0;
  return counts ? progress.there.load() : std::max<std::int64_t>(progress.there, reached_);
}

double TransferItem::Rate() const {
  return Running() && Stalled() == 0 ? pace_.Rate() : 0;
}

double TransferItem::Mean() const {
  const TransferProgress& progress = link_->Progress();
  const double seconds = static_cast<double>(progress.elapsed.load()) / 1e6;
  return seconds > 0 ? static_cast<double>(progress.moved.load()) / seconds : 0;
}

int TransferItem::Stalled() const {
  const std::int64_t heard = link_->Progress().heard;
  if (!Running() || heard == 0) return 0;
  const auto silent = Clock::now().time_since_epoch() - std::chrono::milliseconds(heard);
  if (silent < kPatience) return 0;
  return static_cast<int>(std::chrono::duration_cast<std::chrono::seconds>(silent).count());
}

int TransferItem::Seconds() const {
  if (standing_.state != RowState::Again) return 0;
  const auto left = std::chrono::ceil<std::chrono::seconds>(standing_.again - Clock::now());
  return static_cast<int>(std::max<std::int64_t>(left.count(), 0));
}

std::int64_t TransferItem::Left() const {
  const TransferProgress& progress = link_->Progress();
  if (progress.planning || progress.total <= 0) return -1;
  return std::max<std::int64_t>(progress.total - There(), 0);
}

// An upload learns only on its way what is a folder.
bool TransferItem::IsSeveral() const {
  return chosen_ > 1 || link_->Progress().allFiles > 1 ||
         first_.kind == RemoteEntry::Kind::Directory;
}

double TransferItem::Fraction() const {
  if (Finished()) return 1;
  const double total = static_cast<double>(link_->Progress().total.load());
  if (total <= 0) return 0;
  return std::clamp(static_cast<double>(There()) / total, 0.0, 1.0);
}

}  // namespace corvane
