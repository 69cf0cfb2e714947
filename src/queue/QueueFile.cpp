#include "queue/QueueFile.h"

#include <algorithm>
#include <fstream>
#include <string_view>

namespace corvane {
namespace {

using Values = SqliteFile::Values;
using Columns = SqliteFile::Columns;
using Statement = SqliteFile::Statement;

// "local" is NULL where it is the same as "remote", "place" until a directory was looked through.
constexpr SqliteFile::Layout kLayout{
    .version = 1,
    .tables =
        "CREATE TABLE about(name TEXT PRIMARY KEY, value TEXT NOT NULL) STRICT, WITHOUT ROWID;"
        "CREATE TABLE rows("
        "id INTEGER PRIMARY KEY, place INTEGER NOT NULL, state INTEGER NOT NULL,"
        "host TEXT NOT NULL, port INTEGER NOT NULL, user TEXT NOT NULL, path TEXT NOT NULL,"
        "passive INTEGER NOT NULL, security INTEGER NOT NULL, encoding TEXT NOT NULL,"
        "certificate TEXT NOT NULL, asksPassword INTEGER NOT NULL, keptPassword INTEGER NOT NULL,"
        "warnsOfPlain INTEGER NOT NULL, keepAlive INTEGER NOT NULL,"
        "siteConnections INTEGER NOT NULL, download INTEGER NOT NULL,"
        "remoteDirectory TEXT NOT NULL, targetFolder TEXT NOT NULL, size INTEGER NOT NULL,"
        "bufferSize INTEGER NOT NULL, keepTimes INTEGER NOT NULL, checks INTEGER NOT NULL,"
        "usesPartNames INTEGER NOT NULL, connections INTEGER NOT NULL) STRICT;"
        "CREATE TABLE jobs("
        "row INTEGER NOT NULL, id INTEGER NOT NULL, parent INTEGER, state INTEGER NOT NULL,"
        "kind INTEGER NOT NULL, policy INTEGER NOT NULL, begun INTEGER NOT NULL,"
        "there INTEGER NOT NULL, size INTEGER NOT NULL, modified INTEGER,"
        "remote TEXT NOT NULL, local TEXT, place TEXT,"
        "PRIMARY KEY(row, id)) STRICT, WITHOUT ROWID",
    .alone = true};

// Of rows that may replace one state of a file only. Files that were made before have no such
// table.
constexpr const char* kExpectedTable =
    "CREATE TABLE IF NOT EXISTS expected("
    "row INTEGER PRIMARY KEY, there INTEGER NOT NULL, size INTEGER NOT NULL, modified INTEGER,"
    "kind INTEGER NOT NULL, digest TEXT NOT NULL) STRICT";

template <typename Enum>
std::int64_t Number(Enum value) {
  return static_cast<std::int64_t>(value);
}

// Another one after every start of the system; "" where it does not tell.
std::string Boot() {
  std::ifstream file("/proc/sys/kernel/random/boot_id");
  std::string id;
  std::getline(file, id);
  return id;
}

void AddSite(Values& values, const Site& site) {
  values.Add(site.host).Add(site.port).Add(site.user).Add(site.path).Add(site.passive);
  values.Add(Number(site.security)).Add(site.encoding).Add(site.clientCertificate);
  values.Add(site.asksPassword).Add(site.keptPassword).Add(site.warnsOfPlain);
  values.Add(site.keepAlive).Add(site.connections);
}

void AddRow(Values& values, const transferStruct& what) {
  AddSite(values, what.site);
  values.Add(what.download).Add(what.remoteDirectory).Add(what.targetFolder).Add(what.size);
  values.Add(what.bufferSize).Add(what.keepTimes).Add(what.checks).Add(what.usesPartNames);
  values.Add(what.connections);
}

void AddExpected(Values& values, const FileVersion& version) {
  values.Add(version.there).Add(version.size);
  version.modified ? values.Add(*version.modified) : values.AddNull();
  values.Add(Number(version.kind)).Add(version.digest);
}

void AddJob(Values& values, const JobRecord& record) {
  const TransferJob& job = record.job;
  values.Add(record.id);
  record.parent == kNoJob ? values.AddNull() : values.Add(record.parent);
  values.Add(Number(record.state))
      .Add(Number(job.kind))
      .Add(Number(job.policy))
      .Add(job.begun)
      .Add(job.there);
  values.Add(job.size);
  job.modified ? values.Add(*job.modified) : values.AddNull();
  values.Add(job.remote);
  job.local == job.remote ? values.AddNull() : values.Add(job.local);
  record.where.empty() ? values.AddNull() : values.Add(record.where);
}

}  // namespace

class QueueFile::Statements {
 public:
  explicit Statements(SqliteFile& file)
      : addRow(file,
               "INSERT OR REPLACE INTO rows VALUES(?, (SELECT ifnull(max(place), 0) + 1 FROM rows),"
               " ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)"),
        // What becomes known of a row that was removed meanwhile is nobody's.
        addJob(file,
               "INSERT OR REPLACE INTO jobs SELECT ?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9, ?10, ?11,"
               " ?12, ?13"
               " WHERE EXISTS(SELECT 1 FROM rows WHERE id = ?1)"),
        addExpected(file, "INSERT OR REPLACE INTO expected VALUES(?, ?, ?, ?, ?, ?)"),
        setRow(file, "UPDATE rows SET state = ? WHERE id = ?"),
        setPlace(file, "UPDATE rows SET place = ? WHERE id = ?"),
        setJob(file, "UPDATE jobs SET state = ? WHERE row = ? AND id = ?"),
        open(file, "UPDATE jobs SET kind = ?, place = ? WHERE row = ? AND id = ?"),
        removeRow(file, "DELETE FROM rows WHERE id = ?"),
        removeJobs(file, "DELETE FROM jobs WHERE row = ?"),
        removeExpected(file, "DELETE FROM expected WHERE row = ?") {}

  Statement addRow, addJob, addExpected, setRow, setPlace, setJob, open;
  Statement removeRow, removeJobs, removeExpected;
};

QueueFile::QueueFile(const std::string& path) : file_(path, kLayout) {}

QueueFile::~QueueFile() = default;

SqliteFile::Opened QueueFile::Open() {
  const SqliteFile::Opened opened = file_.Open(true);
  if (opened == SqliteFile::Opened::Yes && !statements_) {
    const int status = file_.Run(kExpectedTable);
    if (SqliteFile::IsDamage(status)) return SqliteFile::Opened::Damaged;
    if (status != 0) return SqliteFile::Opened::Failed;
    statements_ = std::make_unique<Statements>(file_);
  }
  return opened;
}

void QueueFile::Close() {
  statements_.reset();
  file_.Close();
}

std::string QueueFile::PutAside() {
  statements_.reset();
  return file_.PutAside();
}

bool QueueFile::SameBoot() {
  std::string kept;
  const int status = file_.Run("SELECT value FROM about WHERE name = 'boot'", {},
                               [&kept](Columns& row) { kept = row.Bytes(); });
  return status == 0 && !kept.empty() && kept == Boot();
}

int QueueFile::InOne(const std::function<int()>& work) {
  int status = file_.Run("BEGIN IMMEDIATE");
  if (status == 0) status = work();
  if (status == 0) status = file_.Run("COMMIT");
  // Some failures have rolled it back already.
  if (status != 0) (void)file_.Run("ROLLBACK");
  return status;
}

int QueueFile::Settle(const std::vector<QueueStore::Row>& rows) {
  return InOne([&] {
    int status = file_.Run("DELETE FROM rows WHERE state IN (?, ?)", [](Values& values) {
      values.Add(Number(RowState::Cancelled)).Add(Number(RowState::Done));
    });
    if (status == 0) status = file_.Run("DELETE FROM jobs WHERE row NOT IN (SELECT id FROM rows)");
    if (status == 0)
      status = file_.Run("DELETE FROM expected WHERE row NOT IN (SELECT id FROM rows)");
    const JobState moved = SameBoot() ? JobState::Done : JobState::Begun;
    if (status == 0) {
      status = file_.Run("UPDATE jobs SET state = ? WHERE state = ?", [moved](Values& values) {
        values.Add(Number(moved)).Add(Number(JobState::Moved));
      });
    }
    for (const QueueStore::Row& row : rows) {
      if (status != 0) break;
      status = statements_->setRow.Run(
          [&row](Values& values) { values.Add(Number(row.state)).Add(row.id); });
      if (status != 0 || std::ranges::find(renumbered_, row.id) == renumbered_.end()) continue;
      status = statements_->removeJobs.Run([&row](Values& values) { values.Add(row.id); });
      if (status == 0) status = WriteJobs(row.id, row.jobs);
    }
    if (status != 0) return status;
    return file_.Run("INSERT OR REPLACE INTO about VALUES('boot', ?)",
                     [](Values& values) { values.Add(Boot()); });
  });
}

int QueueFile::Write(const QueueChanges& changes) {
  return InOne([&] {
    int status = 0;
    for (const auto& [id, row] : changes.rows) {
      if (status = WriteRow(id, row); status != 0) return status;
    }
    std::int64_t place = 0;
    for (const RowId id : changes.order) {
      status = statements_->setPlace.Run([&](Values& values) { values.Add(++place).Add(id); });
      if (status != 0) return status;
    }
    return status;
  });
}

int QueueFile::WriteRow(RowId id, const QueueChanges::Row& row) {
  if (row.removed) {
    const auto fill = [id](Values& values) { values.Add(id); };
    int status = statements_->removeRow.Run(fill);
    if (status == 0) status = statements_->removeExpected.Run(fill);
    return status != 0 ? status : statements_->removeJobs.Run(fill);
  }
  int status = 0;
  if (row.added) {
    status = statements_->addRow.Run(
        [&](Values& values) { AddRow(values.Add(id).Add(Number(RowState::Waiting)), *row.added); });
    if (status == 0 && row.added->expected) {
      status = statements_->addExpected.Run(
          [&](Values& values) { AddExpected(values.Add(id), *row.added->expected); });
    }
    std::vector<JobRecord> chosen;
    for (const TransferJob& job : row.added->jobs) {
      chosen.push_back({static_cast<JobId>(chosen.size()), kNoJob, job});
    }
    if (status == 0) status = WriteJobs(id, chosen);
  }
  for (const QueueChanges::Opened& opened : row.opened) {
    if (status != 0) return status;
    status = statements_->open.Run([&](Values& values) {
      values.Add(Number(RemoteEntry::Kind::Directory)).Add(opened.where);
      values.Add(id).Add(opened.directory);
    });
    if (status == 0) status = WriteJobs(id, opened.jobs);
  }
  if (status == 0 && row.state) {
    status =
        statements_->setRow.Run([&](Values& values) { values.Add(Number(*row.state)).Add(id); });
  }
  for (const auto& change : row.jobs) {
    if (status != 0) return status;
    status = statements_->setJob.Run(
        [&](Values& values) { values.Add(Number(change.second)).Add(id).Add(change.first); });
  }
  return status;
}

int QueueFile::WriteJobs(RowId row, const std::vector<JobRecord>& jobs) {
  for (const JobRecord& record : jobs) {
    const int status =
        statements_->addJob.Run([&](Values& values) { AddJob(values.Add(row), record); });
    if (status != 0) return status;
  }
  return 0;
}

}  // namespace corvane
