#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "ftp/TransferUi.h"
#include "workers/MThread.h"
#include "workers/transferStruct.h"

namespace corvane {

/// Carries out one transfer of files and reports into its row. Own thread; Cancel from any thread.
class FileTransfer : public MThread {
 public:
  /// With `sameConnection` the engine is a browser's, already logged in, and stays open; without,
  /// it is this transfer's own: logged in here and closed at the end.
  FileTransfer(std::shared_ptr<TransferUi> row, transferStruct description, bool sameConnection);

  void Cancel() override;

 protected:
  std::int32_t Execute() override;

 private:
  bool Begin();
  bool DownloadAll();
  bool DownloadFile(const fileStruct& item);
  bool UploadAll();
  bool UploadFile(const std::string& path);
  bool ResumeAt(std::int64_t offset);
  void TellAdded(const std::string& name, std::int64_t size);
  void Finish(bool succeeded);
  /// Keeps the reason for the row; always false.
  bool Fail(const std::string& why);

  const std::shared_ptr<TransferUi> row_;
  const transferStruct description_;
  const bool sameConnection_;
  std::string why_;
};

}  // namespace corvane
