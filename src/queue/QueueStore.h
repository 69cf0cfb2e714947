#pragma once

#include <memory>
#include <string>
#include <vector>

#include "kit/Text.h"
#include "queue/QueueJournal.h"

namespace corvane {

/// The queue on the disk: one SQLite file with a write-ahead log, of this user's alone, written by
/// a thread of its own, which puts what comes within a moment into one transaction. Passwords are
/// not in it. A file that is damaged, or that another version has written, is put aside; one that
/// another program uses is left alone. Where nothing can be written the transfers go on without,
/// and Trouble says so.
class QueueStore final : public QueueJournal {
 public:
  /// `path` is the file's; its folder is there. "" keeps nothing.
  explicit QueueStore(const std::string& path);
  ~QueueStore() override;

  /// A row that was left.
  struct Row {
    RowId id = 0;
    RowState state = RowState::Paused;
    transferStruct what{};          ///< without its jobs
    std::vector<JobRecord> jobs{};  ///< in the order of their numbers
  };
  /// The rows that were left, in their order: those that ran or waited are Paused. Opens the file;
  /// before anything is told. After the start of another system what was Moved has to be looked at
  /// again, and is Begun.
  [[nodiscard]] std::vector<Row> Load();
  /// Larger than the number of every row that is kept.
  [[nodiscard]] RowId NextId() const;

  /// What the user should know of the file; empty while all is well. Any thread.
  [[nodiscard]] Text Trouble() const;

  void RowAdded(RowId row, const transferStruct& what) override;
  void RowChanged(RowId row, RowState state) override;
  void RowsOrdered(const std::vector<RowId>& rows) override;
  void RowRemoved(RowId row) override;
  void DirectoryOpened(RowId row, JobId directory, const std::string& where,
                       std::vector<JobRecord> jobs) override;
  void JobChanged(RowId row, JobId job, JobState state) override;
  void RowSynced(RowId row) override;
  void Flush() override;

 private:
  class Writer;
  const std::shared_ptr<Writer> writer_;
};

}  // namespace corvane
