#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "kit/Text.h"
#include "remote/ServerTrust.h"

struct sqlite3;
struct sqlite3_stmt;

namespace corvane {

/// The file in which known servers stand: one SQLite table. It is opened with the first use, and
/// made, for this user alone, with the first thing that is written. One that is damaged, or that a
/// newer program has written, is renamed, and what is said of it comes from Trouble. One thread at
/// a time; blocks on the disk, and up to two seconds where another program is writing.
class TrustFile {
 public:
  explicit TrustFile(std::string path) : path_(std::move(path)) {}

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
  struct Closer {
    void operator()(sqlite3* database) const;
  };
  using Bind = std::function<void(sqlite3_stmt*)>;
  using Read = std::function<void(sqlite3_stmt*)>;

  /// Whether the file is open; with `make` it is made where it is missing.
  [[nodiscard]] bool Open(bool make);
  /// The status of SQLite.
  [[nodiscard]] int OpenDatabase();
  [[nodiscard]] int Run(const char* sql, const Bind& bind = {}, const Read& read = {});
  /// The same on an open file; one that turns out to be damaged is put aside.
  bool Use(bool make, const char* sql, const Bind& bind, const Read& read = {});
  /// Where a file goes that cannot be used.
  [[nodiscard]] std::string Aside() const;
  void PutAside(const Text& why);

  const std::string path_;
  std::unique_ptr<sqlite3, Closer> database_;
  Text trouble_;
};

}  // namespace corvane
