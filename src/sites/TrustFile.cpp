#include "sites/TrustFile.h"

#include <fcntl.h>
#include <sqlite3.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <string_view>

#include "prefs/PrefPaths.h"
#include "util/ErrorText.h"
#include "util/UniqueFd.h"

namespace corvane {
namespace {

constexpr int kVersion = 1;
constexpr int kPatience = 2000;  // milliseconds
// What OpenDatabase returns for a file of a newer program; no status of SQLite.
constexpr int kNewer = -1;

constexpr const char* kTable =
    "CREATE TABLE IF NOT EXISTS servers("
    "host TEXT NOT NULL, port INTEGER NOT NULL,"
    "name TEXT, names TEXT, issuer TEXT, notBefore INTEGER, notAfter INTEGER,"
    "sha256 BLOB, problems INTEGER, since INTEGER,"  // NULL where no certificate is trusted
    "wasEncrypted INTEGER NOT NULL DEFAULT 0, mayBePlain INTEGER NOT NULL DEFAULT 0,"
    "PRIMARY KEY(host, port)) WITHOUT ROWID";

constexpr const char* kColumns =
    "name, names, issuer, notBefore, notAfter, sha256, problems, since";

void BindText(sqlite3_stmt* statement, int place, const std::string& text) {
  sqlite3_bind_text(statement, place, text.data(), static_cast<int>(text.size()),
                    SQLITE_TRANSIENT);  // NOLINT(*-int-to-ptr,*-cstyle-cast): the library's own
}

void BindServer(sqlite3_stmt* statement, const std::string& host, std::uint16_t port) {
  BindText(statement, 1, host);
  sqlite3_bind_int(statement, 2, port);
}

std::string TextAt(sqlite3_stmt* statement, int column) {
  const auto* bytes = static_cast<const char*>(sqlite3_column_blob(statement, column));
  const auto size = static_cast<std::size_t>(sqlite3_column_bytes(statement, column));
  return bytes != nullptr ? std::string(bytes, size) : "";
}

// Names hold no line end, or could not be a host's.
std::string Joined(const std::vector<std::string>& names) {
  std::string text;
  for (const std::string& name : names) text += name + "\n";
  return text;
}

std::vector<std::string> Parted(std::string_view text) {
  std::vector<std::string> names;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    names.emplace_back(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return names;
}

void BindCertificate(sqlite3_stmt* statement, const KnownCertificate& trusted) {
  const Certificate& certificate = trusted.certificate;
  BindText(statement, 3, certificate.name);
  BindText(statement, 4, Joined(certificate.names));
  BindText(statement, 5, certificate.issuer);
  sqlite3_bind_int64(statement, 6, certificate.notBefore);
  sqlite3_bind_int64(statement, 7, certificate.notAfter);
  BindText(statement, 8, certificate.sha256);
  sqlite3_bind_int64(statement, 9, certificate.problems);
  sqlite3_bind_int64(statement, 10, trusted.since);
}

// The columns of kColumns from `first` on.
KnownCertificate CertificateAt(sqlite3_stmt* statement, int first) {
  return {{.name = TextAt(statement, first),
           .names = Parted(TextAt(statement, first + 1)),
           .issuer = TextAt(statement, first + 2),
           .notBefore = sqlite3_column_int64(statement, first + 3),
           .notAfter = sqlite3_column_int64(statement, first + 4),
           .sha256 = TextAt(statement, first + 5),
           .problems = static_cast<std::uint32_t>(sqlite3_column_int64(statement, first + 6))},
          sqlite3_column_int64(statement, first + 7)};
}

bool IsDamage(int status) {
  return (status & 0xFF) == SQLITE_CORRUPT || (status & 0xFF) == SQLITE_NOTADB;
}

}  // namespace

void TrustFile::Closer::operator()(sqlite3* database) const {
  sqlite3_close_v2(database);
}

bool TrustFile::Open(bool make) {
  if (database_ != nullptr) return true;
  if (path_.empty()) return false;
  const int missing = make ? MakeDirectories(BaseDirectory(true), path_, true) : 0;
  const int flags = O_RDWR | O_CLOEXEC | O_NOFOLLOW | (make ? O_CREAT : 0);
  UniqueFd file(missing == 0 ? ::open(path_.c_str(), flags, 0600) : -1);
  if (!file) {
    const int error = missing != 0 ? missing : errno;
    if (make || error != ENOENT) {
      trouble_ = Text("Trusted certificates cannot be kept: %1", ErrorText(error));
    }
    return false;
  }
  file.reset();  // closing it later would let go of the library's locks
  const int status = OpenDatabase();
  if (status == SQLITE_OK) return true;
  database_.reset();
  if (status == kNewer) {
    PutAside(Text("The trusted certificates were written by a newer version. They are kept as %1.",
                  Aside()));
  } else if (IsDamage(status)) {
    PutAside(
        Text("The trusted certificates could not be read. What there is of them is kept as %1.",
             Aside()));
  } else {
    trouble_ = Text("Trusted certificates cannot be kept: %1", sqlite3_errstr(status));
  }
  return false;
}

int TrustFile::OpenDatabase() {
  sqlite3* database = nullptr;
  const int opened = sqlite3_open_v2(path_.c_str(), &database,
                                     SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, nullptr);
  database_.reset(database);
  if (opened != SQLITE_OK) return opened;
  sqlite3_busy_timeout(database, kPatience);
  int version = 0;
  std::string verdict;
  int status = Run("PRAGMA user_version", {},
                   [&version](sqlite3_stmt* row) { version = sqlite3_column_int(row, 0); });
  if (status == SQLITE_OK && version > kVersion) return kNewer;
  if (status == SQLITE_OK) {
    status = Run("PRAGMA quick_check(1)", {},
                 [&verdict](sqlite3_stmt* row) { verdict = TextAt(row, 0); });
  }
  if (status == SQLITE_OK && verdict != "ok") return SQLITE_CORRUPT;
  if (status == SQLITE_OK && version < kVersion) {
    status = Run(kTable);
    if (status == SQLITE_OK) status = Run("PRAGMA user_version = 1");
  }
  return status;
}

int TrustFile::Run(const char* sql, const Bind& bind, const Read& read) {
  sqlite3_stmt* made = nullptr;
  const int prepared = sqlite3_prepare_v2(database_.get(), sql, -1, &made, nullptr);
  const std::unique_ptr<sqlite3_stmt, decltype(&sqlite3_finalize)> statement(made,
                                                                             sqlite3_finalize);
  if (prepared != SQLITE_OK) return prepared;
  if (bind) bind(made);
  int status = sqlite3_step(made);
  for (; status == SQLITE_ROW; status = sqlite3_step(made)) {
    if (read) read(made);
  }
  return status == SQLITE_DONE ? SQLITE_OK : status;
}

bool TrustFile::Use(bool make, const char* sql, const Bind& bind, const Read& read) {
  for (int tries = 0; tries < 2; ++tries) {
    if (!Open(make)) {
      // What was damaged is out of the way now.
      if (!make || tries > 0 || trouble_.IsEmpty()) return false;
      continue;
    }
    const int status = Run(sql, bind, read);
    if (status == SQLITE_OK) return true;
    if (!IsDamage(status)) {
      trouble_ = Text("Trusted certificates cannot be kept: %1", sqlite3_errstr(status));
      return false;
    }
    database_.reset();
    PutAside(
        Text("The trusted certificates could not be read. What there is of them is kept as %1.",
             Aside()));
    if (!make) return false;
  }
  return false;
}

std::string TrustFile::Aside() const {
  return path_ + std::string(kDamagedSuffix);
}

// A journal that is left belongs to the file.
void TrustFile::PutAside(const Text& why) {
  std::rename(path_.c_str(), Aside().c_str());
  std::rename((path_ + "-journal").c_str(), (Aside() + "-journal").c_str());
  trouble_ = why;
}

KnownServer TrustFile::Find(const std::string& host, std::uint16_t port) {
  KnownServer known;
  const std::string sql = std::string("SELECT wasEncrypted, mayBePlain, ") + kColumns +
                          " FROM servers WHERE host = ?1 AND port = ?2";
  Use(
      false, sql.c_str(), [&](sqlite3_stmt* statement) { BindServer(statement, host, port); },
      [&known](sqlite3_stmt* row) {
        known.wasEncrypted = sqlite3_column_int(row, 0) != 0;
        known.mayBePlain = sqlite3_column_int(row, 1) != 0;
        const bool trusted = sqlite3_column_type(row, 7) != SQLITE_NULL;
        if (trusted) known.trusted = CertificateAt(row, 2);
      });
  return known;
}

std::vector<TrustFile::Row> TrustFile::Trusted() {
  std::vector<Row> rows;
  const std::string sql = std::string("SELECT host, port, ") + kColumns +
                          " FROM servers WHERE sha256 IS NOT NULL ORDER BY host, port";
  Use(false, sql.c_str(), {}, [&rows](sqlite3_stmt* row) {
    rows.push_back({TextAt(row, 0), static_cast<std::uint16_t>(sqlite3_column_int(row, 1)),
                    CertificateAt(row, 2)});
  });
  return rows;
}

bool TrustFile::Trust(const std::string& host, std::uint16_t port,
                      const KnownCertificate& trusted) {
  return Use(true,
             "INSERT INTO servers(host, port, name, names, issuer, notBefore, notAfter, sha256,"
             " problems, since) VALUES(?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9, ?10)"
             " ON CONFLICT DO UPDATE SET name = ?3, names = ?4, issuer = ?5, notBefore = ?6,"
             " notAfter = ?7, sha256 = ?8, problems = ?9, since = ?10",
             [&](sqlite3_stmt* statement) {
               BindServer(statement, host, port);
               BindCertificate(statement, trusted);
             });
}

bool TrustFile::SetProtection(const std::string& host, std::uint16_t port, bool wasEncrypted,
                              bool mayBePlain) {
  return Use(true,
             "INSERT INTO servers(host, port, wasEncrypted, mayBePlain) VALUES(?1, ?2, ?3, ?4)"
             " ON CONFLICT DO UPDATE SET wasEncrypted = ?3, mayBePlain = ?4",
             [&](sqlite3_stmt* statement) {
               BindServer(statement, host, port);
               sqlite3_bind_int(statement, 3, static_cast<int>(wasEncrypted));
               sqlite3_bind_int(statement, 4, static_cast<int>(mayBePlain));
             });
}

bool TrustFile::Forget(const std::string& host, std::uint16_t port) {
  return Use(false,
             "UPDATE servers SET name = NULL, names = NULL, issuer = NULL, notBefore = NULL,"
             " notAfter = NULL, sha256 = NULL, problems = NULL, since = NULL"
             " WHERE host = ?1 AND port = ?2",
             [&](sqlite3_stmt* statement) { BindServer(statement, host, port); });
}

}  // namespace corvane
