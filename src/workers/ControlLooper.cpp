#include "workers/ControlLooper.h"

#include <exception>
#include <utility>

#include "ftp/EngineLease.h"
#include "ftp/MFtp.h"
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
    switch (message.what) {
      case "CNNT"_what: Connect(); break;
      case "CRDR"_what: Refresh(); break;
      case "PCHN"_what: ChangeDirectory(message.FindString("cwd").value_or("")); break;
      case "HSYM"_what: FollowLink(message.FindString("sym").value_or("")); break;
      default: break;
    }
  } catch (const NLException& error) {
    engine_->ReportLost(error);
  } catch (const std::exception& error) {
    engine_->Warn(std::string("The request could not be carried out: ") + error.what() + "\n");
  }
}

void ControlLooper::Connect() {
  cache_ = std::make_shared<ListingCache>();
  if (engine_->Login() != 1) return;
  engine_->GetServerType();
  if (engine_->ReturnServerType() == MFtp::kWindowsNT) AskForUnixListings();
  engine_->SetPWD();
  engine_->SendCommand(MFtp::BINARY);
  const std::string file = EnterStartPath();
  engine_->SetPWD();
  ListDirectory(*engine_, *cache_);
  if (!file.empty()) AskForDownload(file);
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
  if (engine_->GetFileSize(name) < 0)
    ChangeDirectory(name);
  else
    AskForDownload(name);
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
  engine_->UpdateStatus(engine_->Lost() ? "Connection lost." : "Connected.");
  if (!entered) return;
  const auto lister = std::make_shared<DirLister>(cache_, engine_);
  if (!lister->Run()) engine_->Warn("The system has no thread left to fetch the listing.\n");
}

// A request on a connection that is gone is answered with a warning.
bool ControlLooper::NeedsConnection() {
  if (cache_ && !engine_->Lost()) return false;
  engine_->Warn("There is no connection to " + engine_->Host() + " any more.\n");
  return true;
}

}  // namespace corvane
