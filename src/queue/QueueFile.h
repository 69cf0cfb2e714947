#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "queue/QueueChanges.h"
#include "queue/QueueStore.h"
#include "util/SqliteFile.h"

namespace corvane {

/// What stands in the queue's file, and how. What is called a status is SQLite's, 0 for success.
/// Blocks on the disk. One thread at a time.
class QueueFile {
 public:
  explicit QueueFile(const std::string& path);
  ~QueueFile();

  /// Made where it is missing.
  [[nodiscard]] SqliteFile::Opened Open();
  [[nodiscard]] const std::string& Why() const { return file_.Why(); }
  void Close();
  /// Closes it and puts it aside under the name that is returned.
  std::string PutAside();

  /// The rows that were left, as they are to be gone on with. Nothing where the file says what
  /// cannot be.
  [[nodiscard]] std::optional<std::vector<QueueStore::Row>> Read();
  /// Writes down what Read has made of the file. The status.
  [[nodiscard]] int Settle(const std::vector<QueueStore::Row>& rows);
  /// All of it or, where it fails, nothing. The status.
  [[nodiscard]] int Write(const QueueChanges& changes);

 private:
  class Statements;

  [[nodiscard]] bool SameBoot();
  [[nodiscard]] bool ReadExpected(std::vector<QueueStore::Row>& rows);
  [[nodiscard]] bool ReadJobs(std::vector<QueueStore::Row>& rows);
  [[nodiscard]] int InOne(const std::function<int()>& work);
  [[nodiscard]] int WriteRow(RowId id, const QueueChanges::Row& row);
  [[nodiscard]] int WriteJobs(RowId row, const std::vector<JobRecord>& jobs);

  SqliteFile file_;
  std::unique_ptr<Statements> statements_;  // once open
  std::vector<RowId> renumbered_;           // rows whose jobs Read gave other numbers
};

}  // namespace corvane
