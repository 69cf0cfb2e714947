#include <algorithm>
#include <utility>

#include "queue/JobBoard.h"
#include "remote/RemotePath.h"

namespace corvane {

JobBoard::JobBoard(const transferStruct& what, std::vector<JobRecord> kept, RowId row,
                   std::shared_ptr<QueueJournal> journal)
    : top_(PathBelow(what.targetFolder, "")),
      download_(what.download),
      kept_(!kept.empty()),
      row_(row),
      journal_(std::move(journal)),
      chosen_(kept.empty() ? what.jobs.size()
                           : static_cast<std::size_t>(
                                 std::ranges::count(kept, kNoJob, &JobRecord::parent))) {
  const MutexLock hold(lock_);
  directories_[kNoJob];
  for (JobRecord& record : kept) Restore(std::move(record));
  if (count_.done > 0) proof_ = Proof::None;
  std::vector<std::pair<JobId, JobState>> ended;
  EndEmptied(ended);
}

// What was looked through stays so: what it holds follows, and what it has left is counted then.
void JobBoard::Restore(JobRecord record) {
  const bool open = !record.where.empty();
  const JobState state = open && !HasEnded(record.state) ? JobState::Open : record.state;
  const JobId id = Add(record.parent, std::move(record.job), state);
  if (!open) {
    if (!HasEnded(state)) Queue(id);
    return;
  }
  const Work work = Whole(id);
  directories_[id] = {std::move(record.where), work.job.local, work.shown, 0, {}, 0};
}

// The last word on a directory may be missing: what held it open has ended.
void JobBoard::EndEmptied(std::vector<std::pair<JobId, JobState>>& changes) {
  for (auto at = directories_.rbegin(); at != directories_.rend(); ++at) {
    const JobId id = at->first;
    if (id == kNoJob || at->second.left > 0 || jobs_[id].state != JobState::Open) continue;
    jobs_[id].state = JobState::Done;
    --left_;
    --directories_[jobs_[id].parent].left;
    changes.emplace_back(id, JobState::Done);
  }
}

}  // namespace corvane
