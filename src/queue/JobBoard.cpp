#include "queue/JobBoard.h"

#include <algorithm>
#include <utility>

#include "remote/RemotePath.h"

namespace corvane {
namespace {

using Kind = RemoteEntry::Kind;

bool IsWhole(JobState state) {
  return state == JobState::Moved || state == JobState::Done;
}

}  // namespace

JobBoard::JobBoard(const transferStruct& what, RowId row, std::shared_ptr<QueueJournal> journal)
    : JobBoard(what, std::vector<JobRecord>(), row, std::move(journal)) {
  const MutexLock hold(lock_);
  for (const TransferJob& job : what.jobs) Queue(Add(kNoJob, job, JobState::Waiting));
}

bool JobBoard::HasEnded(JobState state) {
  return IsWhole(state) || state == JobState::Failed;
}

JobId JobBoard::Add(JobId parent, TransferJob job, JobState state) {
  const auto id = static_cast<JobId>(jobs_.size());
  Entry& entry = jobs_.emplace_back();
  entry.parent = parent;
  entry.job = std::move(job);
  entry.job.begun = entry.job.begun || state == JobState::Begun;
  entry.state = state;
  CountIn(entry, 1);
  if (IsWhole(state)) CountDone(entry, 1);
  if (state == JobState::Failed) ++count_.failed;
  if (HasEnded(state)) return id;
  ++left_;
  ++directories_[parent].left;
  return id;
}

void JobBoard::Queue(JobId id) {
  const Entry& entry = jobs_[id];
  if (entry.job.kind == Kind::Directory) return unread_.push_back(id);
  directories_[entry.parent].waiting.push_back(id);
  filled_.insert(entry.parent);
  ++ready_;
}

void JobBoard::CountIn(const Entry& entry, int sign) {
  if (entry.job.kind == Kind::Directory) return;
  count_.files += sign;
  if (entry.job.size < 0) unsized_ += sign;
  count_.bytes += sign * std::max<std::int64_t>(entry.job.size, 0);
}

void JobBoard::CountDone(const Entry& entry, int sign) {
  if (entry.job.kind == Kind::Directory) return;
  count_.done += sign;
  count_.doneBytes += sign * std::max<std::int64_t>(entry.job.size, 0);
}

void JobBoard::Begin(bool retry) {
  std::vector<std::pair<JobId, JobState>> changes;
  {
    const MutexLock hold(lock_);
    stopped_ = false;
    for (JobId id = 0; id < jobs_.size(); ++id) {
      Entry& entry = jobs_[id];
      if (std::exchange(entry.later, false)) Queue(id);
      if (!retry || entry.state != JobState::Failed) continue;
      --count_.failed;
      const bool open = directories_.contains(id);
      entry.state = open ? JobState::Open : entry.job.begun ? JobState::Begun : JobState::Waiting;
      changes.emplace_back(id, entry.state);
      Reopen(id, changes);
      if (!open) Queue(id);
    }
    EndEmptied(changes);
  }
  for (const auto& [id, state] : changes) Note(id, state);
}

// A job has not ended after all, nor have the directories above it.
void JobBoard::Reopen(JobId id, std::vector<std::pair<JobId, JobState>>& changes) {
  ++left_;
  const JobId parent = jobs_[id].parent;
  ++directories_[parent].left;
  if (parent == kNoJob || !HasEnded(jobs_[parent].state)) return;
  jobs_[parent].state = JobState::Open;
  changes.emplace_back(parent, JobState::Open);
  Reopen(parent, changes);
}

std::optional<JobBoard::Work> JobBoard::Take(JobId near) {
  const MutexLock hold(lock_);
  while (!stopped_) {
    if (const auto id = Next(near)) {
      SetTaken(*id, true);
      Work work = Whole(*id);
      work.kept = kept_ || jobs_[*id].state == JobState::Begun;
      jobs_[*id].state = JobState::Begun;
      return work;
    }
    // Whoever works may find more.
    if (taken_ == 0) return std::nullopt;
    changed_.Wait(lock_);
  }
  return std::nullopt;
}

// A directory is looked through before the files of a strange one are begun, by one at a time as
// long as there is something to move: each directory that somebody changes to costs a command.
std::optional<JobId> JobBoard::Next(JobId near) {
  if (filled_.contains(near)) return FileOf(near);
  if (!unread_.empty() && (looking_ == 0 || ready_ == 0)) {
    const JobId id = unread_.front();
    unread_.pop_front();
    return id;
  }
  if (filled_.empty()) return std::nullopt;
  return FileOf(OtherDirectory());
}

JobId JobBoard::FileOf(JobId directory) {
  std::deque<JobId>& waiting = directories_[directory].waiting;
  const JobId id = waiting.front();
  waiting.pop_front();
  --ready_;
  if (waiting.empty()) filled_.erase(directory);
  return id;
}

// One in which nobody works, or else one that has much left for each who does.
JobId JobBoard::OtherDirectory() const {
  constexpr int kLooks = 16;
  JobId best = *filled_.begin();
  std::size_t most = 0;
  int looks = 0;
  for (const JobId id : filled_) {
    const Directory& directory = directories_.at(id);
    if (directory.taken == 0) return id;
    const std::size_t share = directory.waiting.size() / static_cast<std::size_t>(directory.taken);
    if (share > most) best = id;
    most = std::max(most, share);
    if (++looks == kLooks) break;
  }
  return best;
}

void JobBoard::SetTaken(JobId id, bool taken) {
  const int change = taken ? 1 : -1;
  jobs_[id].taken = taken;
  taken_ += change;
  directories_[jobs_[id].parent].taken += change;
  if (jobs_[id].job.kind == Kind::Directory) looking_ += change;
}

JobBoard::Work JobBoard::Whole(JobId id) const {
  const Entry& entry = jobs_[id];
  Work work{id, entry.parent, entry.job, {}, entry.job.local};
  if (entry.parent == kNoJob) {
    const std::string& own = download_ ? entry.job.local : entry.job.remote;
    const bool inside = download_ && own.starts_with(top_);
    work.shown = inside ? own.substr(top_.size()) : download_ ? own : SplitPath(own).second;
    work.name = work.shown;
    return work;
  }
  const Directory& above = directories_.at(entry.parent);
  work.shown = PathBelow(above.shown, entry.job.remote);
  work.job.remote = PathBelow(above.where, entry.job.remote);
  work.job.local = PathBelow(above.local, entry.job.local);
  return work;
}

void JobBoard::Stop() {
  const MutexLock hold(lock_);
  stopped_ = true;
  changed_.NotifyAll();
}

// Nothing of it can be taken before the journal knows of it.
bool JobBoard::Open(const Work& directory, const std::string& where,
                    std::vector<TransferJob> jobs) {
  std::vector<JobId> found;
  std::vector<JobRecord> records;
  {
    const MutexLock hold(lock_);
    directories_[directory.id] = {where, directory.job.local, directory.shown, 0, {}, 0};
    for (TransferJob& job : jobs) {
      if (journal_) records.push_back({static_cast<JobId>(jobs_.size()), directory.id, job});
      found.push_back(Add(directory.id, std::move(job), JobState::Waiting));
    }
  }
  if (journal_) journal_->DirectoryOpened(row_, directory.id, where, std::move(records));
  // Who looks again after a crash would take a beginning of this row's own for somebody's file.
  const Policy policy = directory.job.policy;
  if (policy == Policy::Skip || policy == Policy::KeepBoth) Flush();
  const MutexLock hold(lock_);
  jobs_[directory.id].state = JobState::Open;
  SetTaken(directory.id, false);
  // What was found is looked through before what was found above it.
  const std::size_t others = unread_.size();
  for (const JobId id : found) Queue(id);
  std::rotate(unread_.begin(), unread_.begin() + static_cast<std::ptrdiff_t>(others),
              unread_.end());
  changed_.NotifyAll();
  return !found.empty();
}

std::optional<JobBoard::Work> JobBoard::End(JobId id, JobState state) {
  std::optional<Work> above;
  {
    const MutexLock hold(lock_);
    Entry& entry = jobs_[id];
    if (entry.taken) SetTaken(id, false);
    entry.state = state;
    if (IsWhole(state)) CountDone(entry, 1);
    if (state == JobState::Failed) ++count_.failed;
    --left_;
    const JobId parent = entry.parent;
    Directory& directory = directories_[parent];
    if (--directory.left == 0 && parent != kNoJob) above = Whole(parent);
    changed_.NotifyAll();
  }
  Note(id, state);
  return above;
}

void JobBoard::PutBack(JobId id) {
  const MutexLock hold(lock_);
  if (!jobs_[id].taken) return;
  jobs_[id].later = true;
  SetTaken(id, false);
  changed_.NotifyAll();
}

void JobBoard::SetBegun(JobId id, std::optional<std::int64_t> modified) {
  {
    const MutexLock hold(lock_);
    jobs_[id].job.begun = true;
    if (modified) jobs_[id].job.modified = modified;
  }
  Note(id, JobState::Begun);
}

void JobBoard::Flush() const {
  if (journal_) journal_->Flush();
}

Proof JobBoard::Prove(Proof proof) {
  const MutexLock hold(lock_);
  proof_ = std::min(proof_.value_or(proof), proof);
  return *proof_;
}

Proof JobBoard::LeastProof() const {
  const MutexLock hold(lock_);
  return proof_.value_or(Proof::None);
}

bool JobBoard::Reach(std::int64_t bytes) {
  const MutexLock hold(lock_);
  const bool further = bytes > reached_;
  if (further) reached_ = bytes;
  return further;
}

bool JobBoard::HasTree() const {
  const MutexLock hold(lock_);
  return std::ranges::any_of(jobs_, [](const Entry& entry) {
    return entry.parent == kNoJob && entry.job.kind == Kind::Directory;
  });
}

void JobBoard::Unsynced() {
  std::vector<std::pair<JobId, JobState>> changes;
  {
    const MutexLock hold(lock_);
    for (JobId id = 0; id < jobs_.size(); ++id) {
      Entry& entry = jobs_[id];
      if (entry.state != JobState::Moved || entry.job.kind == Kind::Directory) continue;
      CountDone(entry, -1);
      entry.state = JobState::Begun;
      entry.job.begun = true;
      changes.emplace_back(id, entry.state);
      Reopen(id, changes);
      Queue(id);
    }
  }
  for (const auto& [id, state] : changes) Note(id, state);
}

void JobBoard::Synced() {
  {
    const MutexLock hold(lock_);
    for (Entry& entry : jobs_)
      if (entry.state == JobState::Moved) entry.state = JobState::Done;
  }
  if (journal_) journal_->RowSynced(row_);
}

void JobBoard::Note(JobId id, JobState state) const {
  if (journal_) journal_->JobChanged(row_, id, state);
}

std::vector<std::string> JobBoard::Above(JobId id) const {
  std::vector<std::string> paths;
  const MutexLock hold(lock_);
  for (JobId at = jobs_[id].parent; at != kNoJob; at = jobs_[at].parent)
    paths.push_back(directories_.at(at).where);
  std::ranges::reverse(paths);
  return paths;
}

JobBoard::Count JobBoard::Counted() const {
  const MutexLock hold(lock_);
  Count count = count_;
  count.complete = unread_.empty() && looking_ == 0;
  count.sized = unsized_ == 0;
  return count;
}

int JobBoard::Ready() const {
  const MutexLock hold(lock_);
  return ready_ + static_cast<int>(unread_.size());
}

bool JobBoard::AllEnded() const {
  const MutexLock hold(lock_);
  return left_ == 0;
}

void JobBoard::Describe(JobId id, Kind kind, std::int64_t size) {
  const MutexLock hold(lock_);
  Entry& entry = jobs_[id];
  const bool moves = (entry.job.kind == Kind::Directory) != (kind == Kind::Directory);
  if (moves && entry.taken) looking_ += kind == Kind::Directory ? 1 : -1;
  CountIn(entry, -1);
  entry.job.size = size;
  if (moves && !entry.taken) {
    // It waits in the other line from now on.
    if (kind == Kind::Directory) {
      std::erase(directories_[entry.parent].waiting, id);
      if (directories_[entry.parent].waiting.empty()) filled_.erase(entry.parent);
      --ready_;
    } else {
      std::erase(unread_, id);
    }
  }
  entry.job.kind = kind;
  CountIn(entry, 1);
  if (moves && !entry.taken && entry.state != JobState::Open) Queue(id);
}

std::vector<JobBoard::Work> JobBoard::Chosen() const {
  const MutexLock hold(lock_);
  std::vector<Work> chosen;
  for (JobId id = 0; id < jobs_.size(); ++id) {
    if (jobs_[id].parent == kNoJob && !HasEnded(jobs_[id].state)) chosen.push_back(Whole(id));
  }
  return chosen;
}

}  // namespace corvane
