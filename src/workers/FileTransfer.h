#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "ftp/MFtp.h"
#include "ftp/TransferUi.h"
#include "kit/Mutex.h"
#include "workers/MThread.h"
#include "workers/transferStruct.h"

namespace corvane {

class LocalFile;
class LocalFolder;

/// Carries out one transfer of files and folders and reports into its row. Own thread; Cancel from
/// any thread.
///
/// An entry that the server or this machine refuses is noted in the row, and a download goes on
/// with the next one; so does an upload between the chosen entries, while inside a folder it ends
/// with that folder. Data that breaks off ends a download, a connection that is lost ends both.
class FileTransfer : public MThread {
 public:
  /// With `sameConnection` the engine is a browser's, already logged in, and stays open in the
  /// directory in which it was; without, it is this transfer's own: logged in here and closed at
  /// the end.
  FileTransfer(std::shared_ptr<TransferUi> row, transferStruct description, bool sameConnection);

  void Cancel() override;

 protected:
  std::int32_t Execute() override;

 private:
  /// What became of an entry.
  enum class Step {
    Done,
    Failed,   ///< it was noted, and there may be a next one
    Stopped,  ///< there is no next one
  };
  /// An entry on its way.
  struct Entry {
    std::string name;        ///< raw bytes, as the server has it or is to have it
    std::string local;       ///< the name in a local folder, or the path of what is sent
    std::string shown;       ///< its path from the top of the transfer, for the user
    std::int64_t size = -1;  ///< bytes as listed; -1 when not known
    bool inFolder = false;   ///< stands in a folder that is transferred
  };
  static constexpr int kMaxNotes = 1000;

  // FileTransfer.cpp
  bool Begin();
  void SetWorking(bool working) EXCLUDES(lock_);
  bool BeginEntry(const Entry& entry);
  bool BeginFile(const Entry& entry, std::string_view label, std::int64_t total,
                 std::int64_t start);
  Step EndFile(const Entry& entry);
  Step Fail(const Entry& entry, const std::string& why);
  Step Stop(const Entry& entry, const std::string& why);
  Step LeaveDirectory(const Entry& entry, Step step);
  void Note(const std::string& text);
  [[nodiscard]] std::string Summary() const;
  void Finish();
  void HandBack();

  // FileTransferDownload.cpp
  void DownloadAll();
  Step dDirectory(const LocalFolder& above, const Entry& entry);
  Step DownloadEntries(const LocalFolder& above, const Entry& entry);
  Step DownloadFile(const LocalFolder& folder, const Entry& entry);
  int OpenTarget(const LocalFolder& folder, const Entry& entry, LocalFile& file, bool& resume);
  int Fetch(LocalFile& file, const Entry& entry, bool resume);

  // FileTransferUpload.cpp
  void UploadAll();
  Step uDirectory(const Entry& entry);
  Step UploadEntries(const Entry& entry);
  Step UploadFile(const Entry& entry);
  void TellAdded(const std::string& name, std::optional<std::int64_t> size);

  const std::shared_ptr<TransferUi> row_;
  const transferStruct description_;
  MFtp& engine_;
  const bool sameConnection_;
  MFtp::Walk walk_;
  Entry current_;
  int entries_ = 0;  // begun
  int failed_ = 0;
  int notes_ = 0;
  bool stopped_ = false;
  std::string failedEntry_;  // the last that failed
  std::string why_;          // and what was the matter
  std::string lostWhy_;      // of the exception that ended the work
  Mutex lock_;
  bool working_ GUARDED_BY(lock_) = false;  // the engine is this transfer's to interrupt
};

}  // namespace corvane
