#include <algorithm>
#include <limits>
#include <map>
#include <utility>

#include "queue/QueueFile.h"

namespace corvane {
namespace {

using Columns = SqliteFile::Columns;

constexpr std::int64_t kLargest = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t kAnyTime = kLargest / 1000;  // in seconds
constexpr std::int64_t kLargestInt = std::numeric_limits<std::int32_t>::max();

bool HasEnded(JobState state) {
  return state == JobState::Done || state == JobState::Failed;
}

// Columns whose numbers have limits; what lies beyond is no value, and the row makes no sense.
class Checked {
 public:
  explicit Checked(Columns& columns) : columns_(columns) {}

  template <typename Number>
  Number In(std::int64_t least, std::int64_t most) {
    const std::int64_t number = columns_.Number();
    makesSense_ = makesSense_ && number >= least && number <= most;
    return makesSense_ ? static_cast<Number>(number) : Number{};
  }
  template <typename Enum>
  Enum Of(Enum last) {
    return In<Enum>(0, static_cast<std::int64_t>(last));
  }
  bool Flag() { return In<int>(0, 1) != 0; }
  std::string Bytes() { return columns_.Bytes(); }
  bool SkipsNull() { return columns_.SkipsNull(); }
  [[nodiscard]] bool MakesSense() const { return makesSense_; }

 private:
  Columns& columns_;
  bool makesSense_ = true;
};

Site SiteOf(Checked& columns) {
  Site site;
  site.host = columns.Bytes();
  site.port = columns.In<std::uint16_t>(0, std::numeric_limits<std::uint16_t>::max());
  site.user = columns.Bytes();
  site.path = columns.Bytes();
  site.passive = columns.Flag();
  site.security = columns.Of(Security::Plain);
  site.encoding = columns.Bytes();
  site.clientCertificate = columns.Bytes();
  site.asksPassword = columns.Flag();
  site.keptPassword = columns.Flag();
  site.warnsOfPlain = columns.Flag();
  site.keepAlive = columns.In<std::int32_t>(0, kLargestInt);
  site.connections = columns.In<std::int32_t>(0, kLargestInt);
  return site;
}

QueueStore::Row RowOf(Checked& columns) {
  QueueStore::Row row;
  row.id = columns.In<RowId>(1, kLargest - 1);
  row.state = columns.Of(RowState::Done);
  transferStruct& what = row.what;
  what.site = SiteOf(columns);
  what.download = columns.Flag();
  what.remoteDirectory = columns.Bytes();
  what.targetFolder = columns.Bytes();
  what.size = columns.In<std::int64_t>(-1, kLargest);
  what.bufferSize = columns.In<std::int32_t>(1, kLargestInt);
  what.keepTimes = columns.Flag();
  what.checks = columns.Flag();
  what.usesPartNames = columns.Flag();
  what.connections = columns.In<std::int32_t>(1, kLargestInt);
  return row;
}

FileVersion VersionOf(Checked& columns) {
  FileVersion version;
  version.there = columns.Flag();
  version.size = columns.In<std::int64_t>(-1, kLargest);
  if (!columns.SkipsNull()) version.modified = columns.In<std::int64_t>(-kAnyTime, kAnyTime);
  version.kind = columns.Of(DigestKind::Sha512);
  version.digest = columns.Bytes();
  return version;
}

JobRecord JobOf(Checked& columns) {
  JobRecord record;
  record.id = columns.In<JobId>(0, kNoJob - 1);
  if (!columns.SkipsNull()) record.parent = columns.In<JobId>(0, kNoJob - 1);
  record.state = columns.Of(JobState::Failed);
  TransferJob& job = record.job;
  job.kind = columns.In<RemoteEntry::Kind>(static_cast<int>(RemoteEntry::Kind::File),
                                           static_cast<int>(RemoteEntry::Kind::Device));
  job.policy = columns.Of(Policy::KeepBoth);
  job.begun = columns.Flag();
  job.there = columns.Flag();
  job.size = columns.In<std::int64_t>(-1, kLargest);
  if (!columns.SkipsNull()) job.modified = columns.In<std::int64_t>(-kAnyTime, kAnyTime);
  job.remote = columns.Bytes();
  job.local = columns.SkipsNull() ? job.remote : columns.Bytes();
  if (!columns.SkipsNull()) record.where = columns.Bytes();
  return record;
}

// The jobs of one row as they come. Numbers that never were written are closed up: several
// directories may be looked through at once, and the program may end between them.
class Jobs {
 public:
  explicit Jobs(std::vector<JobRecord>& jobs) : jobs_(jobs) {}

  // False for a job that cannot be.
  bool Add(JobRecord record) {
    const auto number = static_cast<JobId>(jobs_.size());
    if (record.parent != kNoJob) {
      const auto above = std::ranges::lower_bound(numbers_, record.parent);
      if (above == numbers_.end() || *above != record.parent) return false;
      record.parent = static_cast<JobId>(above - numbers_.begin());
      const JobRecord& directory = jobs_[record.parent];
      if (directory.job.kind != RemoteEntry::Kind::Directory || directory.where.empty()) {
        return false;
      }
    }
    numbers_.push_back(record.id);
    renumbered_ = renumbered_ || record.id != number;
    record.id = number;
    jobs_.push_back(std::move(record));
    return true;
  }
  [[nodiscard]] bool Renumbered() const { return renumbered_; }

 private:
  std::vector<JobRecord>& jobs_;
  std::vector<JobId> numbers_;  // as they stand in the file
  bool renumbered_ = false;
};

// A directory has not ended before all that it holds.
void OpenAbove(std::vector<JobRecord>& jobs) {
  for (auto job = jobs.rbegin(); job != jobs.rend(); ++job) {
    if (HasEnded(job->state) || job->parent == kNoJob) continue;
    JobState& above = jobs[job->parent].state;
    if (HasEnded(above)) above = JobState::Open;
  }
}

}  // namespace

std::optional<std::vector<QueueStore::Row>> QueueFile::Read() {
  std::vector<QueueStore::Row> rows;
  bool makesSense = true;
  const int status = file_.Run(
      "SELECT id, state, host, port, user, path, passive, security, encoding, certificate,"
      " asksPassword, keptPassword, warnsOfPlain, keepAlive, siteConnections, download,"
      " remoteDirectory, targetFolder, size, bufferSize, keepTimes, checks, usesPartNames,"
      " connections FROM rows ORDER BY place, id",
      {}, [&](Columns& columns) {
        Checked checked(columns);
        rows.push_back(RowOf(checked));
        makesSense = makesSense && checked.MakesSense();
      });
  if (status != 0 || !makesSense || !ReadExpected(rows) || !ReadJobs(rows)) return std::nullopt;
  std::erase_if(rows, [](const QueueStore::Row& row) {
    return row.state == RowState::Cancelled || row.state == RowState::Done;
  });
  for (QueueStore::Row& row : rows) {
    if (row.state != RowState::Failed) row.state = RowState::Paused;
  }
  return rows;
}

bool QueueFile::ReadExpected(std::vector<QueueStore::Row>& rows) {
  bool makesSense = true;
  const int status = file_.Run(
      "SELECT row, there, size, modified, kind, digest FROM expected", {}, [&](Columns& columns) {
        const auto row = std::ranges::find(rows, columns.Number(), &QueueStore::Row::id);
        Checked checked(columns);
        const FileVersion version = VersionOf(checked);
        makesSense = makesSense && checked.MakesSense();
        if (!makesSense || row == rows.end()) return;
        row->what.expected = version;
        row->what.tracked = true;
      });
  return status == 0 && makesSense;
}

bool QueueFile::ReadJobs(std::vector<QueueStore::Row>& rows) {
  std::map<RowId, Jobs> jobs;
  for (QueueStore::Row& row : rows) jobs.emplace(row.id, row.jobs);
  const JobState moved = SameBoot() ? JobState::Done : JobState::Begun;
  bool makesSense = true;
  const int status = file_.Run(
      "SELECT row, id, parent, state, kind, policy, begun, there, size, modified, remote, local, "
      "place"
      " FROM jobs ORDER BY row, id",
      {}, [&](Columns& columns) {
        const auto row = jobs.find(columns.Number());
        Checked checked(columns);
        JobRecord record = JobOf(checked);
        if (record.state == JobState::Moved) record.state = moved;
        makesSense = makesSense && checked.MakesSense() && row != jobs.end() &&
                     row->second.Add(std::move(record));
      });
  if (status != 0 || !makesSense) return false;
  renumbered_.clear();
  for (const auto& [id, those] : jobs) {
    if (those.Renumbered()) renumbered_.push_back(id);
  }
  for (QueueStore::Row& row : rows) OpenAbove(row.jobs);
  return true;
}

}  // namespace corvane
