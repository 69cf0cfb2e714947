#include "util/SqliteFile.h"

#include <fcntl.h>
#include <sqlite3.h>

#include <cerrno>
#include <cstdio>

#include "util/ErrorText.h"
#include "util/UniqueFd.h"

namespace corvane {
namespace {

constexpr int kPatience = 2000;  // milliseconds
// What CheckDatabase returns for a file of another version; no status of SQLite.
constexpr int kOtherVersion = -1;
constexpr int kMostAside = 9;

}  // namespace

SqliteFile::Values& SqliteFile::Values::Add(std::int64_t number) {
  sqlite3_bind_int64(statement_, ++place_, number);
  return *this;
}

SqliteFile::Values& SqliteFile::Values::Add(std::string_view bytes) {
  sqlite3_bind_text64(statement_, ++place_, bytes.empty() ? "" : bytes.data(), bytes.size(),
                      SQLITE_TRANSIENT,
                      SQLITE_UTF8);  // NOLINT(*-int-to-ptr,*-cstyle-cast): the library's own
  return *this;
}

SqliteFile::Values& SqliteFile::Values::AddNull() {
  sqlite3_bind_null(statement_, ++place_);
  return *this;
}

std::int64_t SqliteFile::Columns::Number() {
  return sqlite3_column_int64(statement_, column_++);
}

std::string SqliteFile::Columns::Bytes() {
  const auto* bytes = static_cast<const char*>(sqlite3_column_blob(statement_, column_));
  const auto size = static_cast<std::size_t>(sqlite3_column_bytes(statement_, column_));
  ++column_;
  return bytes != nullptr ? std::string(bytes, size) : "";
}

bool SqliteFile::Columns::SkipsNull() {
  const bool null = sqlite3_column_type(statement_, column_) == SQLITE_NULL;
  if (null) ++column_;
  return null;
}

void SqliteFile::Statement::Closer::operator()(sqlite3_stmt* statement) const {
  sqlite3_finalize(statement);
}

SqliteFile::Statement::Statement(SqliteFile& file, const char* sql) {
  sqlite3_stmt* made = nullptr;
  prepared_ = sqlite3_prepare_v2(file.database_.get(), sql, -1, &made, nullptr);
  statement_.reset(made);
}

int SqliteFile::Statement::Run(const Fill& fill, const Read& read) {
  if (prepared_ != SQLITE_OK) return prepared_;
  Values values(statement_.get());
  if (fill) fill(values);
  int status = sqlite3_step(statement_.get());
  for (; status == SQLITE_ROW; status = sqlite3_step(statement_.get())) {
    Columns columns(statement_.get());
    if (read) read(columns);
  }
  sqlite3_reset(statement_.get());
  return status == SQLITE_DONE ? SQLITE_OK : status;
}

void SqliteFile::Closer::operator()(sqlite3* database) const {
  sqlite3_close_v2(database);
}

SqliteFile::Opened SqliteFile::Open(bool make) {
  if (database_ != nullptr) return Opened::Yes;
  const int flags = O_RDWR | O_CLOEXEC | O_NOFOLLOW | (make ? O_CREAT : 0);
  UniqueFd file(::open(path_.c_str(), flags, 0600));
  if (!file) {
    why_ = ErrorText(errno);
    return !make && errno == ENOENT ? Opened::Missing : Opened::Failed;
  }
  file.reset();  // closing it later would let go of the library's locks
  const int status = OpenDatabase();
  if (status == SQLITE_OK) return Opened::Yes;
  why_ = Words(status);
  if (status == kOtherVersion) return Opened::OtherVersion;
  if (IsDamage(status)) return Opened::Damaged;
  database_.reset();
  return (status & 0xFF) == SQLITE_BUSY ? Opened::Busy : Opened::Failed;
}

int SqliteFile::OpenDatabase() {
  sqlite3* database = nullptr;
  const int opened = sqlite3_open_v2(path_.c_str(), &database,
                                     SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, nullptr);
  database_.reset(database);
  if (opened != SQLITE_OK) return opened;
  sqlite3_busy_timeout(database, kPatience);
  // In this mode before the first access, the log needs no shared memory.
  int status = layout_.alone ? Run("PRAGMA locking_mode = EXCLUSIVE") : SQLITE_OK;
  if (status == SQLITE_OK) status = CheckDatabase();
  if (status == SQLITE_OK && layout_.alone) {
    status = Run("PRAGMA journal_mode = WAL; PRAGMA synchronous = FULL");
  }
  return status == SQLITE_OK ? MakeTables() : status;
}

int SqliteFile::CheckDatabase() {
  std::int64_t version = 0;
  std::string verdict;
  int status = Run("PRAGMA user_version", {}, [&version](Columns& row) { version = row.Number(); });
  if (status != SQLITE_OK) return status;
  if (version != 0 && version != layout_.version) return kOtherVersion;
  status = Run("PRAGMA quick_check(1)", {}, [&verdict](Columns& row) { verdict = row.Bytes(); });
  return status == SQLITE_OK && verdict != "ok" ? SQLITE_CORRUPT : status;
}

int SqliteFile::MakeTables() {
  std::int64_t version = 0;
  int status = Run("PRAGMA user_version", {}, [&version](Columns& row) { version = row.Number(); });
  if (status != SQLITE_OK || version != 0) return status;
  const std::string sql = "BEGIN IMMEDIATE; " + std::string(layout_.tables) +
                          "; PRAGMA user_version = " + std::to_string(layout_.version) + "; COMMIT";
  status = Run(sql.c_str());
  // Tables of that name are there already, and nobody's.
  return status == SQLITE_ERROR ? SQLITE_CORRUPT : status;
}

int SqliteFile::Run(const char* sql, const Fill& fill, const Read& read) {
  if (!fill && !read) return sqlite3_exec(database_.get(), sql, nullptr, nullptr, nullptr);
  return Statement(*this, sql).Run(fill, read);
}

bool SqliteFile::IsDamage(int status) {
  return (status & 0xFF) == SQLITE_CORRUPT || (status & 0xFF) == SQLITE_NOTADB;
}

std::string SqliteFile::Words(int status) {
  return sqlite3_errstr(status);
}

std::string SqliteFile::PutAside() {
  // What stands in the log stays there.
  if (database_ != nullptr) {
    sqlite3_db_config(database_.get(), SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
  }
  database_.reset();
  const std::string first = FirstAside(path_);
  std::string aside = first;
  for (int i = 2; i <= kMostAside && ::access(aside.c_str(), F_OK) == 0; ++i) {
    aside = first + "." + std::to_string(i);
  }
  for (const char* part : {"", "-journal", "-wal"}) {
    std::rename((path_ + part).c_str(), (aside + part).c_str());
  }
  return aside;
}

}  // namespace corvane
