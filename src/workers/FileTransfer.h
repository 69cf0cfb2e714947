#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "kit/Mutex.h"
#include "remote/BrowserUi.h"
#include "remote/RemoteSession.h"
#include "remote/TransferUi.h"
#include "workers/FileMover.h"
#include "workers/MThread.h"
#include "workers/TransferNotes.h"
#include "workers/WayDown.h"
#include "workers/transferStruct.h"

namespace corvane {

class LocalFolder;

/// Carries out one transfer of files and folders and reports into its row. Own thread; Cancel from
/// any thread.
///
/// An entry that the server or this machine refuses is noted in the row, and the rest goes on; but
/// an upload leaves the folder in which that happened. A full disk or a lost connection ends the
/// transfer, and so does a server that is busy for several entries in a row.
class FileTransfer : public MThread {
 public:
  /// With a `window` the session is that browser window's, connected already, and stays open;
  /// without, it is this transfer's own: connected here and closed at the end.
  FileTransfer(std::shared_ptr<TransferUi> row, transferStruct description,
               std::shared_ptr<RemoteSession> session, std::shared_ptr<BrowserUi> window = {});

  void Cancel() override;

 protected:
  std::int32_t Execute() override;

 private:
  /// An entry on its way.
  struct Entry {
    TransferJob job;
    std::string shown;      ///< its path from the top of the transfer, for the user
    bool inFolder = false;  ///< stands in a folder that is transferred
  };

  // FileTransfer.cpp
  Outcome Begin();
  void SetWorking(bool working) EXCLUDES(lock_);
  bool BeginFile(const Entry& entry, const Text& status, std::int64_t total);
  /// Notes what became of an entry that was begun; returns it.
  Outcome End(const Entry& entry, Outcome outcome);
  /// Whether the transfer ends with this.
  [[nodiscard]] bool Stops(const Outcome& outcome) const;
  static constexpr int kMostBusy = 3;
  void Finish();

  /// What was stored on the server is to bear that time. Where it cannot, the log says so once.
  void KeepTime(const std::string& remote, std::int64_t seconds, bool folder);

  // FileTransferDownload.cpp
  Outcome DownloadAll();
  [[nodiscard]] static std::string LocalName(const Entry& entry);
  Outcome DownloadEntry(const LocalFolder& folder, const Entry& entry);
  Outcome dDirectory(const LocalFolder& above, const Entry& entry);
  Outcome DownloadEntries(const LocalFolder& above, const Entry& entry, const std::string& where);
  /// When the entry was changed on the server, as far as that is known or can be asked for.
  std::optional<std::int64_t> TimeOf(const Entry& entry);
  Outcome DownloadFile(const LocalFolder& folder, const Entry& entry);
  Outcome OpenTarget(const LocalFolder& folder, const Entry& entry, LocalFile& file, bool& resume);

  // FileTransferUpload.cpp
  Outcome UploadAll();
  Outcome uDirectory(const Entry& entry);
  Outcome UploadEntries(const Entry& entry, const std::string& where, bool made);
  Outcome UploadFile(const Entry& entry);
  void TellAdded(const TransferJob& job, bool folder);

  const std::shared_ptr<TransferUi> row_;
  const transferStruct description_;
  const std::shared_ptr<RemoteSession> session_;
  const std::shared_ptr<BrowserUi> window_;  // null on a connection of its own
  FileMover mover_;
  WayDown way_;
  TransferNotes notes_;
  int busyInARow_ = 0;
  bool keepsTimes_;        // of files; the server has not refused to
  bool keepsFolderTimes_;  // likewise of folders
  Mutex lock_;
  bool working_ GUARDED_BY(lock_) = false;  // the session is this transfer's to interrupt
};

}  // namespace corvane
