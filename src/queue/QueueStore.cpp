#include "queue/QueueStore.h"

#include <algorithm>
#include <chrono>
#include <map>
#include <set>
#include <utility>

#include "kit/Background.h"
#include "kit/Mutex.h"
#include "queue/QueueChanges.h"
#include "queue/QueueFile.h"

namespace corvane {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds kTogether(50);  // what comes within is written as one
constexpr std::chrono::seconds kTryAgain(3);        // after it could not be written
constexpr std::chrono::seconds kAtEnd(2);           // for which the end of the program waits

}  // namespace

/// Collects what is told, and writes it on a thread of its own.
class QueueStore::Writer : public std::enable_shared_from_this<QueueStore::Writer> {
 public:
  explicit Writer(const std::string& path) : keeps_(!path.empty()), file_(path) {}

  [[nodiscard]] std::vector<Row> Load() EXCLUDES(lock_);
  [[nodiscard]] RowId NextId() const EXCLUDES(lock_);
  [[nodiscard]] Text Trouble() const EXCLUDES(lock_);
  void Add(RowId row, const transferStruct& what) EXCLUDES(lock_);
  void Remove(RowId row) EXCLUDES(lock_);
  void Order(const std::vector<RowId>& rows) EXCLUDES(lock_);
  void ChangeJob(RowId row, JobId job, JobState state) EXCLUDES(lock_);
  void Sync(RowId row) EXCLUDES(lock_);
  /// `edit` gets what has changed of a row that is kept.
  template <typename Edit>
  void Change(RowId row, const Edit& edit) EXCLUDES(lock_) {
    const MutexLock hold(lock_);
    if (!keeps_ || !known_.contains(row)) return;
    edit(pending_.rows[row]);
    Told();
  }
  void Flush() EXCLUDES(lock_);
  void Close() EXCLUDES(lock_);

 private:
  void Told() REQUIRES(lock_);
  void Run() EXCLUDES(lock_);
  /// The next that is to be written; none at the end.
  [[nodiscard]] bool Await(QueueChanges& batch) EXCLUDES(lock_);
  [[nodiscard]] bool Keep(const QueueChanges& batch) EXCLUDES(lock_);
  [[nodiscard]] bool Open() EXCLUDES(lock_);
  void PutAside(SqliteFile::Opened why) EXCLUDES(lock_);
  void Say(const Text& trouble) EXCLUDES(lock_);

  mutable Mutex lock_;
  Condition changed_;
  bool keeps_ GUARDED_BY(lock_);
  bool runs_ GUARDED_BY(lock_) = false;
  bool closing_ GUARDED_BY(lock_) = false;
  bool hurries_ GUARDED_BY(lock_) = false;
  bool failing_ GUARDED_BY(lock_) = false;
  std::int64_t told_ GUARDED_BY(lock_) = 0;
  std::int64_t taken_ GUARDED_BY(lock_) = 0;  // of those, from the beginning: taken to be written
  std::int64_t kept_ GUARDED_BY(lock_) = 0;
  std::int64_t failures_ GUARDED_BY(lock_) = 0;
  QueueChanges pending_ GUARDED_BY(lock_);
  std::set<RowId> known_ GUARDED_BY(lock_);
  std::map<RowId, std::set<JobId>> moved_ GUARDED_BY(lock_);  // and not known to be on the disk
  Text aside_ GUARDED_BY(lock_);
  Text trouble_ GUARDED_BY(lock_);
  QueueFile file_;  // Load's, then the thread's
};

std::vector<QueueStore::Row> QueueStore::Writer::Load() {
  std::vector<Row> rows;
  {
    const MutexLock hold(lock_);
    if (!keeps_) return rows;
  }
  for (int tries = 0; tries < 2 && Open(); ++tries) {
    if (auto read = file_.Read()) {
      rows = std::move(*read);
      const int status = file_.Settle(rows);
      if (status != 0) {
        Say(Text("The list of transfers cannot be kept: %1", SqliteFile::Words(status)));
        // The numbers that are handed out are not those in the file, which stays as it is.
        const MutexLock hold(lock_);
        keeps_ = false;
      }
      break;
    }
    PutAside(SqliteFile::Opened::Damaged);
  }
  const MutexLock hold(lock_);
  for (const Row& row : rows) known_.insert(row.id);
  return rows;
}

// A file that cannot be used makes room for a new one.
bool QueueStore::Writer::Open() {
  for (int tries = 0; tries < 2; ++tries) {
    const SqliteFile::Opened opened = file_.Open();
    switch (opened) {
      case SqliteFile::Opened::Yes: return true;
      case SqliteFile::Opened::OtherVersion:
      case SqliteFile::Opened::Damaged: PutAside(opened); break;
      case SqliteFile::Opened::Busy: {
        Say(
            Text("Another program keeps the list of transfers. "
                 "What is transferred here is forgotten when this program ends."));
        const MutexLock hold(lock_);
        keeps_ = false;
        return false;
      }
      case SqliteFile::Opened::Missing:
      case SqliteFile::Opened::Failed:
        Say(Text("The list of transfers cannot be kept: %1", file_.Why()));
        return false;
    }
  }
  Say(Text("The list of transfers cannot be kept: %1", file_.Why()));
  return false;
}

void QueueStore::Writer::PutAside(SqliteFile::Opened why) {
  const std::string name = file_.PutAside();
  const MutexLock hold(lock_);
  aside_ =
      why == SqliteFile::Opened::OtherVersion
          ? Text("The list of transfers was written by another version. It is kept as %1.", name)
          : Text("The list of transfers could not be read. What there is of it is kept as %1.",
                 name);
}

void QueueStore::Writer::Say(const Text& trouble) {
  const MutexLock hold(lock_);
  trouble_ = trouble;
}

RowId QueueStore::Writer::NextId() const {
  const MutexLock hold(lock_);
  return known_.empty() ? 1 : *known_.rbegin() + 1;
}

Text QueueStore::Writer::Trouble() const {
  const MutexLock hold(lock_);
  return Text::Lines({aside_, trouble_});
}

void QueueStore::Writer::Add(RowId row, const transferStruct& what) {
  const MutexLock hold(lock_);
  if (!keeps_) return;
  known_.insert(row);
  pending_.rows[row].added = what;
  Told();
}

void QueueStore::Writer::Remove(RowId row) {
  const MutexLock hold(lock_);
  if (!keeps_ || known_.erase(row) == 0) return;
  moved_.erase(row);
  pending_.rows[row] = {.removed = true};
  Told();
}

void QueueStore::Writer::Order(const std::vector<RowId>& rows) {
  const MutexLock hold(lock_);
  if (!keeps_) return;
  pending_.order = rows;
  Told();
}

void QueueStore::Writer::ChangeJob(RowId row, JobId job, JobState state) {
  const MutexLock hold(lock_);
  if (!keeps_ || !known_.contains(row)) return;
  pending_.rows[row].jobs[job] = state;
  if (state == JobState::Moved) {
    moved_[row].insert(job);
  } else if (const auto moved = moved_.find(row); moved != moved_.end()) {
    moved->second.erase(job);
  }
  Told();
}

void QueueStore::Writer::Sync(RowId row) {
  const MutexLock hold(lock_);
  const auto moved = moved_.find(row);
  if (moved == moved_.end()) return;
  for (const JobId job : moved->second) pending_.rows[row].jobs[job] = JobState::Done;
  moved_.erase(moved);
  Told();
}

void QueueStore::Writer::Told() {
  ++told_;
  if (!runs_) runs_ = Background::Start("queue", [self = shared_from_this()] { self->Run(); });
  if (told_ == kept_ + 1) changed_.NotifyAll();
}

void QueueStore::Writer::Flush() {
  const MutexLock hold(lock_);
  const std::int64_t all = told_;
  const std::int64_t failures = failures_;
  hurries_ = true;
  changed_.NotifyAll();
  while (runs_ && kept_ < all && failures_ == failures) changed_.Wait(lock_);
}

void QueueStore::Writer::Close() {
  const auto end = Clock::now() + kAtEnd;
  const MutexLock hold(lock_);
  closing_ = true;
  changed_.NotifyAll();
  while (runs_ && changed_.WaitUntil(lock_, end)) continue;
}

void QueueStore::Writer::Run() {
  QueueChanges batch;
  while (Await(batch)) {
    const bool kept = Keep(batch);
    if (kept) batch = {};
    const MutexLock hold(lock_);
    failing_ = !kept;
    if (kept) kept_ = taken_;
    if (!kept) ++failures_;
    changed_.NotifyAll();
    if (!keeps_ || (closing_ && !kept)) break;
  }
  file_.Close();
  const MutexLock hold(lock_);
  runs_ = false;
  changed_.NotifyAll();
}

bool QueueStore::Writer::Await(QueueChanges& batch) {
  const MutexLock hold(lock_);
  while (kept_ == told_ && !closing_) changed_.Wait(lock_);
  if (kept_ == told_) return false;
  const auto end = Clock::now() + (failing_ ? Clock::duration(kTryAgain) : kTogether);
  while (!closing_ && !hurries_ && changed_.WaitUntil(lock_, end)) continue;
  hurries_ = false;
  // A batch that could not be written goes first, and what came meanwhile waits.
  if (!batch.IsEmpty()) return true;
  batch = std::exchange(pending_, {});
  taken_ = told_;
  return true;
}

bool QueueStore::Writer::Keep(const QueueChanges& batch) {
  if (!Open()) return false;
  const int status = file_.Write(batch);
  Say(status == 0 ? Text()
                  : Text("The list of transfers cannot be kept: %1", SqliteFile::Words(status)));
  if (SqliteFile::IsDamage(status)) PutAside(SqliteFile::Opened::Damaged);
  return status == 0;
}

QueueStore::QueueStore(const std::string& path) : writer_(std::make_shared<Writer>(path)) {}

QueueStore::~QueueStore() {
  writer_->Close();
}

std::vector<QueueStore::Row> QueueStore::Load() {
  return writer_->Load();
}

RowId QueueStore::NextId() const {
  return writer_->NextId();
}

Text QueueStore::Trouble() const {
  return writer_->Trouble();
}

void QueueStore::RowAdded(RowId row, const transferStruct& what) {
  writer_->Add(row, what);
}

void QueueStore::RowChanged(RowId row, RowState state) {
  writer_->Change(row, [state](QueueChanges::Row& changes) { changes.state = state; });
}

void QueueStore::RowsOrdered(const std::vector<RowId>& rows) {
  writer_->Order(rows);
}

void QueueStore::RowRemoved(RowId row) {
  writer_->Remove(row);
}

void QueueStore::DirectoryOpened(RowId row, JobId directory, const std::string& where,
                                 std::vector<JobRecord> jobs) {
  writer_->Change(row, [&](QueueChanges::Row& changes) {
    changes.opened.push_back({directory, where, std::move(jobs)});
    changes.jobs[directory] = JobState::Open;
  });
}

void QueueStore::JobChanged(RowId row, JobId job, JobState state) {
  writer_->ChangeJob(row, job, state);
}

void QueueStore::RowSynced(RowId row) {
  writer_->Sync(row);
}

void QueueStore::Flush() {
  writer_->Flush();
}

}  // namespace corvane
