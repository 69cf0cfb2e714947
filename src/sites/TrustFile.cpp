#include "sites/TrustFile.h"

#include <algorithm>
#include <string_view>

#include "prefs/PrefPaths.h"
#include "util/ErrorText.h"

namespace corvane {
namespace {

using Values = SqliteFile::Values;
using Columns = SqliteFile::Columns;

constexpr SqliteFile::Layout kLayout{
    .version = 1,
    .tables =
        "CREATE TABLE IF NOT EXISTS servers("
        "host TEXT NOT NULL, port INTEGER NOT NULL,"
        "name TEXT, names TEXT, issuer TEXT, notBefore INTEGER, notAfter INTEGER,"
        "sha256 BLOB, problems INTEGER, since INTEGER,"  // NULL where no certificate is trusted
        "wasEncrypted INTEGER NOT NULL DEFAULT 0, mayBePlain INTEGER NOT NULL DEFAULT 0,"
        "PRIMARY KEY(host, port)) WITHOUT ROWID"};

constexpr const char* kColumns =
    "name, names, issuer, notBefore, notAfter, sha256, problems, since";

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

void AddCertificate(Values& values, const KnownCertificate& trusted) {
  const Certificate& certificate = trusted.certificate;
  values.Add(certificate.name).Add(Joined(certificate.names)).Add(certificate.issuer);
  values.Add(certificate.notBefore).Add(certificate.notAfter).Add(certificate.sha256);
  values.Add(certificate.problems).Add(trusted.since);
}

// The columns of kColumns.
KnownCertificate CertificateOf(Columns& row) {
  KnownCertificate trusted;
  Certificate& certificate = trusted.certificate;
  certificate.name = row.Bytes();
  certificate.names = Parted(row.Bytes());
  certificate.issuer = row.Bytes();
  certificate.notBefore = row.Number();
  certificate.notAfter = row.Number();
  certificate.sha256 = row.Bytes();
  certificate.problems = static_cast<std::uint32_t>(row.Number());
  trusted.since = row.Number();
  return trusted;
}

}  // namespace

TrustFile::TrustFile(std::string path) : path_(std::move(path)), file_(path_, kLayout) {}

bool TrustFile::Open(bool make) {
  if (file_.IsOpen()) return true;
  if (path_.empty()) return false;
  if (const int missing = make ? MakeDirectories(BaseDirectory(true), path_, true) : 0) {
    trouble_ = Text("Trusted certificates cannot be kept: %1", ErrorText(missing));
    return false;
  }
  switch (file_.Open(make)) {
    case SqliteFile::Opened::Yes: return true;
    case SqliteFile::Opened::Missing: return false;
    case SqliteFile::Opened::OtherVersion:
      trouble_ =
          Text("The trusted certificates were written by a newer version. They are kept as %1.",
               file_.PutAside());
      return false;
    case SqliteFile::Opened::Damaged: PutAsideDamaged(); return false;
    case SqliteFile::Opened::Busy:
    case SqliteFile::Opened::Failed:
      trouble_ = Text("Trusted certificates cannot be kept: %1", file_.Why());
      return false;
  }
  return false;
}

bool TrustFile::Use(bool make, const char* sql, const SqliteFile::Fill& fill,
                    const SqliteFile::Read& read) {
  for (int tries = 0; tries < 2; ++tries) {
    if (!Open(make)) {
      // What was damaged is out of the way now.
      if (!make || tries > 0 || trouble_.IsEmpty()) return false;
      continue;
    }
    const int status = file_.Run(sql, fill, read);
    if (status == 0) return true;
    if (!SqliteFile::IsDamage(status)) {
      trouble_ = Text("Trusted certificates cannot be kept: %1", SqliteFile::Words(status));
      return false;
    }
    PutAsideDamaged();
    if (!make) return false;
  }
  return false;
}

void TrustFile::PutAsideDamaged() {
  trouble_ =
      Text("The trusted certificates could not be read. What there is of them is kept as %1.",
           file_.PutAside());
}

KnownServer TrustFile::Find(const std::string& host, std::uint16_t port) {
  KnownServer known;
  const std::string sql = std::string("SELECT wasEncrypted, mayBePlain, sha256 IS NOT NULL, ") +
                          kColumns + " FROM servers WHERE host = ?1 AND port = ?2";
  Use(
      false, sql.c_str(), [&](Values& values) { values.Add(host).Add(port); },
      [&known](Columns& row) {
        known.wasEncrypted = row.Number() != 0;
        known.mayBePlain = row.Number() != 0;
        if (row.Number() != 0) known.trusted = CertificateOf(row);
      });
  return known;
}

std::vector<TrustFile::Row> TrustFile::Trusted() {
  std::vector<Row> rows;
  const std::string sql = std::string("SELECT host, port, ") + kColumns +
                          " FROM servers WHERE sha256 IS NOT NULL ORDER BY host, port";
  Use(false, sql.c_str(), {}, [&rows](Columns& row) {
    std::string host = row.Bytes();
    const auto port = static_cast<std::uint16_t>(row.Number());
    rows.push_back({std::move(host), port, CertificateOf(row)});
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
             [&](Values& values) { AddCertificate(values.Add(host).Add(port), trusted); });
}

bool TrustFile::SetProtection(const std::string& host, std::uint16_t port, bool wasEncrypted,
                              bool mayBePlain) {
  return Use(true,
             "INSERT INTO servers(host, port, wasEncrypted, mayBePlain) VALUES(?1, ?2, ?3, ?4)"
             " ON CONFLICT DO UPDATE SET wasEncrypted = ?3, mayBePlain = ?4",
             [&](Values& values) { values.Add(host).Add(port).Add(wasEncrypted).Add(mayBePlain); });
}

bool TrustFile::Forget(const std::string& host, std::uint16_t port) {
  return Use(false,
             "UPDATE servers SET name = NULL, names = NULL, issuer = NULL, notBefore = NULL,"
             " notAfter = NULL, sha256 = NULL, problems = NULL, since = NULL"
             " WHERE host = ?1 AND port = ?2",
             [&](Values& values) { values.Add(host).Add(port); });
}

}  // namespace corvane
