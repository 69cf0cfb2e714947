#include "workers/FileTransfer.h"

#include <sys/stat.h>

#include <algorithm>
#include <exception>
#include <utility>

#include "remote/RemotePath.h"
#include "util/ErrorText.h"
#include "workers/FileDownload.h"
#include "workers/Notices.h"

namespace corvane {
namespace {

using Kind = Outcome::Kind;

constexpr std::chrono::milliseconds kLook(20);  // between looks at the movers
constexpr std::chrono::milliseconds kCalmLook(100);
constexpr std::chrono::seconds kAfterLoss(2);  // before another connection is tried

SpeedLimit* LimitOf(const std::shared_ptr<TransferSpeed>& speed, bool download) {
  if (!speed) return nullptr;
  return download ? &speed->down : &speed->up;
}

// A server that shows another face is not asked again and again.
bool IsForGood(const Outcome& outcome) {
  using Trouble = Outcome::Trouble;
  return outcome.kind == Kind::Refused || outcome.kind == Kind::LocalError ||
         outcome.kind == Kind::LocalFull || outcome.trouble == Trouble::Certificate ||
         outcome.trouble == Trouble::NoEncryption;
}

}  // namespace

FileTransfer::FileTransfer(std::shared_ptr<TransferUi> row, transferStruct description,
                           std::shared_ptr<JobBoard> board, std::shared_ptr<SessionPool> pool,
                           std::shared_ptr<TransferSpeed> speed)
    : row_(std::move(row)),
      description_(std::move(description)),
      board_(std::move(board)),
      pool_(std::move(pool)),
      speed_(std::move(speed)),
      run_(*row_, description_, *board_, CancelFlag(), LimitOf(speed_, description_.download),
           nullptr),
      governor_(description_.connections) {
  run_.habits = pool_->HabitsOf(description_.site);
}

FileTransfer::FileTransfer(std::shared_ptr<TransferUi> row, transferStruct description,
                           std::shared_ptr<JobBoard> board, std::shared_ptr<RemoteSession> session,
                           std::shared_ptr<BrowserUi> window, std::shared_ptr<TransferSpeed> speed)
    : row_(std::move(row)),
      description_(std::move(description)),
      board_(std::move(board)),
      session_(std::move(session)),
      window_(std::move(window)),
      speed_(std::move(speed)),
      run_(*row_, description_, *board_, CancelFlag(), LimitOf(speed_, description_.download),
           window_.get()),
      governor_(1) {}

// A browser's connection stays; what is under way on it while this transfer still waits for its
// turn is not this transfer's to interrupt.
void FileTransfer::Cancel() {
  MThread::Cancel();
  board_->Stop();
  for (const auto& mover : Movers()) mover->Stop();
  const MutexLock hold(lock_);
  if (window_ && working_) session_->Interrupt();
  changed_.NotifyAll();
}

void FileTransfer::CheckConnections() {
  checkedFrom_ = Clock::now();
}

std::vector<std::shared_ptr<FileMover>> FileTransfer::Movers() {
  const MutexLock hold(lock_);
  return movers_;
}

void FileTransfer::SetWorking(bool working) {
  const MutexLock hold(lock_);
  working_ = working;
  if (window_ && !working) session_->Resume();
}

std::int32_t FileTransfer::Execute() {
  std::optional<EngineLease> lease;
  if (window_) lease.emplace(*session_, CancelFlag());
  if (lease && !*lease) {
    row_->SetEndState(TransferEnd::Cancelled, {});
    return 0;
  }
  SetWorking(true);
  Outcome outcome;
  try {
    outcome = Prepare();
    if (outcome.IsDone()) outcome = Carry();
    if (outcome.IsDone()) outcome = Sync();
  } catch (const std::exception& error) {
    outcome = Outcome::LocalError(Text("The transfer could not be carried out: %1", error.what()));
  }
  SetWorking(false);
  Finish(outcome);
  return 0;
}

Outcome FileTransfer::Prepare() {
  board_->Flush();
  board_->Begin(false);
  if (Cancelled()) return Outcome::Cancelled();
  if (description_.download) {
    if (Outcome opened = OpenTarget(); !opened.IsDone()) return opened;
  } else {
    LookAtSources();
  }
  run_.syncsAtEnd = description_.download && (board_->ChosenCount() > 1 || board_->HasTree());
  run_.bounds = bounds;
  doneBefore_ = board_->Counted().done;
  Tell();
  return {};
}

Outcome FileTransfer::OpenTarget() {
  const int error = run_.target.Open(description_.targetFolder);
  if (error == 0) return {};
  return Outcome::LocalError(
      Text("Could not open %1: %2", description_.targetFolder, ErrorText(error)));
}

// What was chosen for an upload may be a file or a folder, of any size by now.
void FileTransfer::LookAtSources() {
  for (const JobBoard::Work& work : board_->Chosen()) {
    struct stat status {};
    if (::stat(work.job.local.c_str(), &status) != 0) continue;
    const bool folder = S_ISDIR(status.st_mode);
    board_->Describe(work.id, folder ? RemoteEntry::Kind::Directory : RemoteEntry::Kind::File,
                     folder ? -1 : status.st_size);
  }
}

Outcome FileTransfer::Carry() {
  while (!AddMover(true)) {
    if (Cancelled()) return Outcome::Cancelled();
    if (!ended_.IsDone()) return std::exchange(ended_, {});
    row_->SetStatus(Text("Waiting for a connection to the server."));
    const MutexLock hold(lock_);
    (void)changed_.WaitUntil(lock_, Clock::now() + kCalmLook);
  }
  const auto begin = Clock::now();
  for (;;) {
    {
      const MutexLock hold(lock_);
      const bool young = Clock::now() < begin + std::chrono::seconds(2);
      if (!woken_) (void)changed_.WaitUntil(lock_, Clock::now() + (young ? kLook : kCalmLook));
      woken_ = false;
    }
    Reap();
    Tell();
    {
      const MutexLock hold(lock_);
      if (movers_.empty()) break;
    }
    Watch();
    Govern();
  }
  if (Cancelled()) return Outcome::Cancelled();
  if (board_->AllEnded()) return {};
  if (!ended_.IsDone()) return ended_;
  Outcome delay = run_.Delay();
  return delay.IsDone() ? Outcome{Kind::Lost, 0, Text("The transfer was not finished.")} : delay;
}

bool FileTransfer::AddMover(bool first) {
  auto mover = MakeMover(first);
  if (!mover) return false;
  const MutexLock hold(lock_);
  if (Cancelled()) return false;
  // Whoever looks may find that all have ended before the last of them has said so.
  const bool runs = mover->Start([this, self = shared_from_this()] {
    const MutexLock wake(lock_);
    woken_ = true;
    changed_.NotifyAll();
  });
  if (runs) {
    movers_.push_back(std::move(mover));
  } else if (first) {
    ended_ = Outcome::LocalError(Text("The system has no thread to give."));
  }
  return runs;
}

std::shared_ptr<FileMover> FileTransfer::MakeMover(bool first) {
  constexpr int kAny = 1000;
  if (window_) return std::make_shared<FileMover>(run_, session_);
  auto lease = pool_->Take(description_.site, row_, first ? kAny : description_.connections);
  if (!lease) return nullptr;
  return std::make_shared<FileMover>(run_, std::move(lease));
}

void FileTransfer::Reap() {
  std::vector<std::shared_ptr<FileMover>> over;
  std::size_t left = 0;
  {
    const MutexLock hold(lock_);
    const auto late = std::stable_partition(movers_.begin(), movers_.end(),
                                            [](const auto& mover) { return !mover->HasEnded(); });
    std::move(late, movers_.end(), std::back_inserter(over));
    movers_.erase(late, movers_.end());
    left = movers_.size();
  }
  for (const auto& mover : over) {
    const Outcome& outcome = mover->Result();
    if (outcome.IsDone()) continue;
    noMore_ = Clock::now() + kAfterLoss;
    const bool alone = left == 0;
    if (outcome.trouble == Outcome::Trouble::TooMany && mover->NeverConnected()) {
      // One too many is no failure as long as there are others.
      if (pool_->Used(description_.site) > 0) pool_->Full(description_.site);
      governor_.Lower(std::max<int>(1, static_cast<int>(left)));
    }
    if (alone || IsForGood(outcome) || ended_.IsDone()) ended_ = outcome;
    // A full disk is full for the others too.
    if (outcome.kind == Kind::LocalFull) board_->Stop();
  }
}

void FileTransfer::Govern() {
  if (window_ || Cancelled()) return;
  const TransferProgress& progress = row_->Progress();
  Governor::Sample sample{.now = Clock::now(), .bytes = progress.moved, .files = progress.files};
  int all = 0;
  for (const auto& mover : Movers()) {
    sample.connected += mover->IsConnected() ? 1 : 0;
    all += mover->Leaves() ? 0 : 1;
  }
  sample.ready = board_->Ready();
  // While a tree is looked through there will be work for all.
  const bool finding = sample.connected > 0 && !board_->Counted().complete;
  if (finding) sample.ready = std::max<int>(sample.ready, description_.connections);
  sample.plenty = finding || sample.ready >= 2 * description_.connections;
  const int wanted = governor_.Wanted(sample);
  if (wanted > all && sample.ready > 0 && sample.now >= noMore_) {
    for (int i = all; i < wanted; ++i) {
      if (!AddMover(false)) break;
    }
  } else if (wanted < all && wanted >= 1) {
    const MutexLock hold(lock_);
    const auto last = std::ranges::find_if(movers_.rbegin(), movers_.rend(),
                                           [](const auto& mover) { return !mover->Leaves(); });
    if (last != movers_.rend()) (*last)->Leave();
  }
}

// A connection on which nothing moves is as good as lost.
void FileTransfer::Watch() {
  using std::chrono::milliseconds;
  const Clock::time_point from = checkedFrom_;
  const auto since = std::chrono::duration_cast<milliseconds>(Clock::now() - from);
  const bool checks = from != Clock::time_point() && since < 3 * checkLimit;
  for (const auto& mover : Movers()) {
    const milliseconds silence(mover->Silence());
    if (silence > stallLimit || (checks && std::min(silence, since) > checkLimit)) mover->GiveUp();
  }
}

// What the row is to know of the whole.
void FileTransfer::Tell() {
  using std::chrono::duration_cast;
  TransferProgress& progress = row_->Progress();
  const JobBoard::Count count = board_->Counted();
  int connected = 0;
  for (const auto& mover : Movers()) connected += mover->IsConnected() ? 1 : 0;
  const auto now = Clock::now();
  if (progress.moved > 0 && told_ != Clock::time_point())
    progress.elapsed += duration_cast<std::chrono::microseconds>(now - told_).count();
  told_ = now;
  const bool changes = progress.files != count.done || progress.allFiles != count.files ||
                       progress.connections != connected;
  progress.files = count.done;
  progress.allFiles = count.files;
  progress.total = count.sized ? count.bytes : 0;
  progress.planning = !count.complete;
  progress.connections = connected;
  progress.proof = board_->LeastProof();
  if (changes) progress.changed = true;
}

// The files of trees are written out together.
Outcome FileTransfer::Sync() {
  if (!run_.syncsAtEnd) return {};
  if (const int error = run_.target.SyncAll(); error != 0) {
    board_->Unsynced();
    return WriteFailure(error);
  }
  board_->Synced();
  return {};
}

void FileTransfer::Finish(const Outcome& outcome) {
  Tell();
  const JobBoard::Count count = board_->Counted();
  const bool failed = count.failed > 0;
  // Bytes that come again and again are no way forward.
  const bool further = board_->Reach(run_.Reached());
  row_->Progress().advanced = further || count.done > doneBefore_;
  const bool finished = outcome.IsDone() && !failed && !Cancelled();
  TransferEnd end = TransferEnd::Failed;
  if (finished) {
    end = TransferEnd::Finished;
  } else if (Cancelled()) {
    end = TransferEnd::Cancelled;
  } else if (!outcome.IsDone() && !IsForGood(outcome) && !window_) {
    end = TransferEnd::Again;
  }
  if (window_) {
    window_->SetStatus(finished ? Text("Transfer Complete.") : Text("Transfer Interupted."));
    if (session_->IsLost()) TellLoss(*window_, session_->Host(), session_->HowLost());
  }
  if (outcome.trouble == Outcome::Trouble::RefusedLogin) row_->PostMessage(Message("LGRF"_what));
  const bool untold = end == TransferEnd::Finished || end == TransferEnd::Cancelled;
  row_->SetEndState(end, untold ? Text() : Summary(outcome));
  if (finished) row_->PlaySound(description_.download ? Sound::Downloaded : Sound::Uploaded);
}

Text FileTransfer::Summary(const Outcome& outcome) const {
  const bool wasThere = outcome.trouble == Outcome::Trouble::Other;
  if (outcome.kind == Kind::Lost && wasThere)
    return Text("The connection was lost: %1", outcome.text.Reason());
  const JobBoard::Count count = board_->Counted();
  const std::int64_t failed = count.failed;
  if (!outcome.IsDone() && outcome.kind != Kind::LocalFull) return outcome.text;
  if (!outcome.IsDone() && failed == 0) return outcome.text;
  const bool one = board_->ChosenCount() == 1 && count.files <= 1;
  if (one) return run_.notes.Why();
  if (failed == 1)
    return Text("%1 of %2 files failed: %3: %4", failed, count.files, run_.notes.FailedEntry(),
                run_.notes.Why().Reason());
  return Text("%1 of %2 files failed", failed, count.files);
}

}  // namespace corvane
