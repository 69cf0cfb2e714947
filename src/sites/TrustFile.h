#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "kit/Text.h"
#include "remote/ServerTrust.h"
#include "util/SqliteFile.h"

namespace corvane {

/// The file in which known servers stand: one SQLite table. It is opened with the first use, and
/// made, for this user alone, with the first thing that is written. One that is damaged, or that a
/// newer program has written, is renamed, and what is said of it comes from Trouble. One thread at
/// a time; blocks on the disk, and up to two seconds where another program is writing.
class TrustFile {
 public:
  explicit TrustFile(std::string path);

  struct Row {
    std::string host;
    std::uint16_t port = 21;
    KnownCertificate trusted;
  };

  [[nodiscard]] KnownServer Find(const std::string& host, std::uint16_t port);
  [[nodiscard]] std::vector<Row> Trusted();

  // False where it could not be written.
  [[nodiscard]] bool Trust(const std::string& host, std::uint16_t port,
                           const KnownCertificate& trusted);
  [[nodiscard]] bool SetProtection(const std::string& host, std::uint16_t port, bool wasEncrypted,
                                   bool mayBePlain);
  bool Forget(const std::string& host, std::uint16_t port);

  [[nodiscard]] const Text& Trouble() const { return trouble_; }

 private:
  /// Whether the file is open; with `make` it is made where it is missing.
  [[nodiscard]] bool Open(bool make);
  /// Runs a statement on it; a file that turns out to be damaged is put aside.
  bool Use(bool make, const char* sql, const SqliteFile::Fill& fill,
           const SqliteFile::Read& read = {});
  void PutAsideDamaged();

  const std::string path_;
  SqliteFile file_;
  Text trouble_;
};

}  // namespace corvane
