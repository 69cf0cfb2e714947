#include "workers/ControlLooper.h"

#include <exception>
#include <utility>

#include "ftp/EngineLease.h"
#include "ftp/MFtp.h"
#include "ftp/Refusals.h"
#include "ftp/fileStruct.h"
#include "net/NLException.h"
#include "workers/DirLister.h"
#include "workers/ListingCache.h"

namespace corvane {

ControlLooper::ControlLooper(std::string host, std::uint16_t port, const std::string& user,
                             const std::string& password, std::string startPath, bool passive,
                             std::shared_ptr<BrowserUi> window)
    : Looper("control"),
      startPath_(std::move(startPath)),
      window_(window),
      engine_(std::make_shared<MFtp>(std::move(host), port, user, password, passive,
                                     std::move(window))) {}

ControlLooper::~ControlLooper() {
  engine_->Close();
}

void ControlLooper::Interrupt() {
  engine_->Close();
}

void ControlLooper::MessageReceived(const Message& message) {
  const EngineLease lease(*engine_);
  try {
    Handle(message);
  } catch (const NLException& error) {
    engine_->ReportLost(error);
  } catch (const std::exception& error) {
    engine_->Warn(std::string("The request could not be carried out: ") + error.what() + "\n");
  }
  Message done("DONE"_what);
  done.AddInt32("request", static_cast<std::int32_t>(message.what));
  window_->PostMessage(std::move(done));
}

void ControlLooper::Handle(const Message& message) {
  const auto text = [&message](const char* field) {
    return message.FindString(field).value_or("");
  };
  switch (message.what) {
    case "CNNT"_what: Connect(); break;
    case "RCNN"_what: ConnectAgain(text("path")); break;
    case "CRDR"_what: Refresh(); break;
    case "PCHN"_what: ChangeDirectory(text("cwd")); break;
    case "HSYM"_what: FollowLink(text("sym")); break;
    case "DELE"_what: Delete(message); break;
    case "RNFL"_what: Rename(message); break;
    case "MKDR"_what: CreateDirectory(message); break;
    case "VWFL"_what: ViewFile(message); break;
    case "VWDR"_what: ViewListing(); break;
    case "FRTR"_what:
    default: break;
  }
}

void ControlLooper::Connect() {
  cache_ = std::make_shared<ListingCache>();
  if (!Begin()) return;
  engine_->SetPWD();
  engine_->SendCommand(MFtp::BINARY);
  const std::string file = EnterStartPath();
  engine_->SetPWD();
  ListDirectory(*engine_, *cache_);
  if (!file.empty()) AskForDownload(file);
}

// The rows go before the window learns where the new connection stands: nothing is done to entries
// of the same names elsewhere.
void ControlLooper::ConnectAgain(const std::string& directory) {
  if (!cache_ || !engine_->Lost()) return;
  if (!Begin()) {
    engine_->UpdateStatus("Connection lost.");
    return;
  }
  engine_->SendCommand(MFtp::BINARY);
  window_->BeginListing();
  if (!directory.empty()) {
    engine_->Succeeded(engine_->ChangeDir(directory), "The directory cannot be opened.");
  }
  engine_->SetPWD();
  ListDirectory(*engine_, *cache_);
}

// Logs in and gets to know the server; false when the login failed.
bool ControlLooper::Begin() {
  if (engine_->Login() != 1) return false;
  engine_->GetServerType();
  if (engine_->ReturnServerType() == MFtp::kWindowsNT) AskForUnixListings();
  return true;
}

// The command toggles: one that says "off" has switched from the DOS to the UNIX style.
void ControlLooper::AskForUnixListings() {
  constexpr std::string_view kToggle = "SITE DIRSTYLE\n";
  const std::string reply = engine_->ReturnResponse(kToggle);
  const std::size_t off = reply.find("off");
  if (off == std::string::npos || off == 0) engine_->ReturnResponse(kToggle);
}

// Enters the start path, if there is one. Where it names a file, enters the file's directory and
// answers its name.
std::string ControlLooper::EnterStartPath() {
  if (startPath_.empty()) return {};
  const int code = engine_->ChangeDir(startPath_);
  if (code != 550) {
    engine_->Accepted(code, "The directory cannot be opened.");
    return {};
  }
  const std::size_t slash = startPath_.rfind('/');
  if (slash == std::string::npos || engine_->GetFileSize(startPath_) < 0) {
    engine_->Warn("The server has no directory or file " + startPath_ + ".\n");
    return {};
  }
  engine_->CheckResult(engine_->ChangeDir(slash == 0 ? "/" : startPath_.substr(0, slash)));
  return startPath_.substr(slash + 1);
}

void ControlLooper::Refresh() {
  if (!NeedsConnection()) ListDirectory(*engine_, *cache_);
}

// A link that has a size leads to a file, any other to a directory.
void ControlLooper::FollowLink(const std::string& name) {
  if (NeedsConnection()) return;
  const std::int64_t size = engine_->GetFileSize(name);
  if (size < 0) {
    ChangeDirectory(name);
  } else if (window_->ChangeValues(name, size)) {
    AskForDownload(name);
  }
}

void ControlLooper::AskForDownload(const std::string& name) {
  Message download("DWLD"_what);
  download.AddString("FileName", name);
  window_->PostMessage(std::move(download));
}

void ControlLooper::ChangeDirectory(const std::string& directory) {
  if (NeedsConnection()) return;
  const int code = engine_->ChangeDir(directory);
  const bool entered = engine_->Accepted(code, "The directory cannot be opened.");
  if (entered) window_->BeginListing();
  if (!engine_->Lost() && !engine_->SetPWD() && entered) engine_->AssumePWD(directory);
  if (!engine_->Lost()) engine_->UpdateStatus("Connected.");
  if (!entered) return;
  const auto lister = std::make_shared<DirLister>(cache_, engine_);
  if (!lister->Run()) engine_->Warn("The system has no thread left to fetch the listing.\n");
}

void ControlLooper::Delete(const Message& entries) {
  if (NeedsConnection() || HasMoved(entries)) return;
  Refusals refused;
  const auto tell = [&] {
    if (refused.Count() == 0) return;
    engine_->Warn("The server did not delete everything:\n\n" + refused.Text());
  };
  try {
    DeleteAll(entries, refused);
  } catch (const NLException&) {
    tell();
    throw;
  }
  tell();
  if (engine_->Lost()) engine_->ReportGone();
}

void ControlLooper::DeleteAll(const Message& entries, Refusals& refused) {
  const std::size_t count = entries.CountValues("name");
  for (std::size_t i = 0; i < count && !Quitting() && !engine_->Lost(); ++i) {
    const std::string name = entries.FindString("name", i).value_or("");
    bool deleted = false;
    if (entries.FindInt32("type", i).value_or(kFile) == kDirectory) {
      deleted = engine_->DeleteDirectory(name, refused) != 0;
    } else {
      engine_->UpdateStatus("Deleting File..");
      deleted = engine_->DeleteFile(name, refused);
    }
    engine_->UpdateStatus(deleted ? "Deletion Success." : "Deletion Failed.");
    if (deleted && !window_->RemoveEntry(name)) return;
  }
}

void ControlLooper::Rename(const Message& entry) {
  if (NeedsConnection() || HasMoved(entry)) return;
  const std::string from = entry.FindString("original").value_or("");
  const std::string to = entry.FindString("renameto").value_or("");
  const std::string failed = "\"" + from + "\" was not renamed.";
  if (engine_->Succeeded(engine_->SendCommand("RNFR " + from + "\n"), failed, 3) &&
      engine_->Succeeded(engine_->SendCommand("RNTO " + to + "\n"), failed)) {
    window_->RenameEntry(from, to, engine_->Path());
  }
}

void ControlLooper::CreateDirectory(const Message& entry) {
  if (NeedsConnection() || HasMoved(entry)) return;
  const std::string name = entry.FindString("name").value_or("");
  if (engine_->Succeeded(engine_->SendCommand("MKD " + name + "\n"),
                         "The directory \"" + name + "\" was not created.")) {
    window_->BeginListing();
    ListDirectory(*engine_, *cache_);
  }
}

void ControlLooper::ViewFile(const Message& entry) {
  if (NeedsConnection() || HasMoved(entry)) return;
  engine_->ViewFile(entry.FindString("file").value_or(""));
}

void ControlLooper::ViewListing() {
  const auto viewer = window_->OpenViewer("Listing of: " + engine_->Path());
  if (!viewer) return;
  const bool shown =
      cache_ && cache_->Read([&viewer](std::string_view bytes) { return viewer->Append(bytes); });
  viewer->End(shown ? "" : "The listing could not be read.");
}

// What was asked for in one directory is not done to entries of the same names in another.
bool ControlLooper::HasMoved(const Message& request) {
  if (engine_->StandsIn(request.FindString("path").value_or(""))) return false;
  engine_->Warn("The directory has changed meanwhile. Nothing was done.\n");
  return true;
}

// A request on a connection that is gone is answered by saying so.
bool ControlLooper::NeedsConnection() {
  if (cache_ && !engine_->Lost()) return false;
  engine_->ReportGone();
  return true;
}

}  // namespace corvane
