#include "workers/FileTransfer.h"

#include <cerrno>
#include <exception>
#include <filesystem>
#include <utility>

#include "ftp/EngineLease.h"
#include "ftp/MFtp.h"
#include "net/NLException.h"
#include "settings/ProcessSettings.h"
#include "util/Encodings.h"
#include "util/ErrorText.h"
#include "util/LocalFile.h"

namespace corvane {

FileTransfer::FileTransfer(std::shared_ptr<TransferUi> row, transferStruct description,
                           bool sameConnection)
    : row_(std::move(row)), description_(std::move(description)), sameConnection_(sameConnection) {}

void FileTransfer::Cancel() {
  MThread::Cancel();
  if (sameConnection_)
    description_.engine->AbortData();
  else
    description_.engine->Close();
}

std::int32_t FileTransfer::Execute() {
  const EngineLease lease(*description_.engine);
  bool succeeded = false;
  try {
    succeeded = Begin() && (description_.download ? DownloadAll() : UploadAll());
  } catch (const NLException& error) {
    Fail("The connection was lost: " + Reason(error));
  } catch (const std::exception& error) {
    Fail(std::string("The transfer could not be carried out: ") + error.what());
  }
  Finish(succeeded);
  return 0;
}

// Logs in on a connection of its own and goes where the work is.
bool FileTransfer::Begin() {
  MFtp& engine = *description_.engine;
  if (sameConnection_) return true;
  if (engine.Login() != 1) return Fail(engine.LastFailure());
  engine.GetServerType();
  if (description_.remoteDirectory.empty()) return true;
  const int code = engine.ChangeDir(description_.remoteDirectory);
  if (code != 0 && code < 400) return true;
  return Fail(code == 0 ? engine.LastFailure() : engine.LastReplyText());
}

bool FileTransfer::DownloadAll() {
  for (const fileStruct& item : description_.items) {
    if (Cancelled()) return false;
    if (item.type == kDirectory)
      return Fail(DisplayText(item.name) + " is a folder; only files can be downloaded.");
    if (!DownloadFile(item)) return false;
  }
  return true;
}

bool FileTransfer::DownloadFile(const fileStruct& item) {
  MFtp& engine = *description_.engine;
  const std::string& localName = item.displayName.empty() ? item.name : item.displayName;
  if (!IsSafeLocalName(localName))
    return Fail("The name \"" + DisplayText(localName) + "\" cannot be used for a local file.");

  LocalFile file;
  const auto mode = description_.overwrite ? LocalFile::Mode::Create : LocalFile::Mode::Resume;
  const int error = file.Open(description_.targetFolder, localName, mode);
  if (error == EWOULDBLOCK)
    return Fail("Another transfer is writing " + DisplayText(localName) + " already.");
  if (error != 0)
    return Fail("Could not open " + description_.targetFolder + "/" + DisplayText(localName) +
                ": " + ErrorText(error));
  if (!description_.overwrite && item.size >= 0 && file.InitialSize() > item.size)
    return Fail("The local file is longer than the server's.");
  MFtp::DownloadJob job{item.name, item.size >= 0 ? item.size : -1, 0, description_.overwrite};
  TransferProgress& progress = row_->Progress();
  progress.total = item.size >= 0 ? item.size : 0;
  progress.done = 0;
  progress.start = description_.overwrite ? 0 : file.InitialSize();
  row_->BeginFile(localName);

  bool fetched = engine.PrepareTransfer();
  if (fetched && !description_.overwrite) {
    job.offset = file.InitialSize();
    // A server that cannot resume gives the whole file again.
    if (!ResumeAt(job.offset)) {
      job.offset = 0;
      job.empty = true;
      progress.start = 0;
    }
  }
  fetched = fetched && !Cancelled() && engine.Download(*row_, file, job, CancelFlag()) == 1;
  if (!fetched) {
    if (progress.done == 0) file.Discard();
    return Fail(engine.LastFailure());
  }
  if (const int late = file.Close(); late != 0)
    return Fail("Could not write the file: " + ErrorText(late));
  return true;
}

bool FileTransfer::ResumeAt(std::int64_t offset) {
  return description_.engine->SendCommand("REST " + std::to_string(offset) + "\n") == 350;
}

bool FileTransfer::UploadAll() {
  for (const std::string& path : description_.localItems)
    if (Cancelled() || !UploadFile(path)) return false;
  return true;
}

bool FileTransfer::UploadFile(const std::string& path) {
  MFtp& engine = *description_.engine;
  const std::string name = std::filesystem::path(path).filename().string();
  LocalFile file;
  if (const int error = file.OpenForReading(path); error != 0) {
    row_->SetTrailing("  *Could not open file for reading!*");
    return Fail("Could not read " + path + ": " + ErrorText(error));
  }
  TransferProgress& progress = row_->Progress();
  progress.total = file.InitialSize();
  progress.start = 0;
  progress.done = 0;
  row_->BeginFile(name);
  const bool stored = engine.PrepareTransfer() && !Cancelled() &&
                      engine.Upload(*row_, file, name, CancelFlag()) == 1;
  if (!stored) return Fail(engine.LastFailure());
  TellAdded(name, progress.done);
  return true;
}

// Lets the browser window show what its directory has gained.
void FileTransfer::TellAdded(const std::string& name, std::int64_t size) {
  Message added("ADDI"_what);
  added.AddString("FileName", name);
  added.AddString("Path", description_.remoteDirectory);
  added.AddString("Type", "f");
  added.AddInt64("fSize", size);
  row_->PostMessage(std::move(added));
}

void FileTransfer::Finish(bool succeeded) {
  const SettingsValues settings = ProcessSettings::Get();
  const bool finished = succeeded && !Cancelled();
  const auto state = finished      ? TransferEnd::Finished
                     : Cancelled() ? TransferEnd::Cancelled
                                   : TransferEnd::Failed;
  row_->SetEndState(state, state == TransferEnd::Failed ? why_ : std::string());
  if (finished) row_->PlaySound(description_.download ? settings.dwnldsnd : settings.upldsnd);
  if (sameConnection_) return;
  try {
    if (finished) description_.engine->Quit();
  } catch (const NLException&) {
    // All that mattered has been confirmed already.
  }
  description_.engine->Close();
}

bool FileTransfer::Fail(const std::string& why) {
  why_ = why;
  return false;
}

}  // namespace corvane
