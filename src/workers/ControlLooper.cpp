#include "workers/ControlLooper.h"

#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

#include "remote/RemotePath.h"
#include "workers/DirLister.h"
#include "workers/ListingCache.h"
#include "workers/Refusals.h"
#include "workers/TreeRemover.h"

namespace corvane {

ControlLooper::ControlLooper(Site site, std::shared_ptr<RemoteSession> session,
                             std::shared_ptr<BrowserUi> window)
    : Looper("control"),
      site_(std::move(site)),
      session_(std::move(session)),
      window_(std::move(window)) {}

ControlLooper::~ControlLooper() {
  session_->Close();
}

void ControlLooper::Interrupt() {
  session_->Close();
}

void ControlLooper::MessageReceived(const Message& message) {
  const EngineLease lease(*session_);
  try {
    Handle(message);
  } catch (const std::exception& error) {
    Warn(*window_, Text("The request could not be carried out: %1", error.what()));
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
    case "CRDR"_what: Refresh(text("path")); break;
    case "PCHN"_what: ChangeDirectory(text("path"), text("cwd")); break;
    case "HSYM"_what: FollowLink(text("path"), text("sym")); break;
    case "DELE"_what: Delete(message); break;
    case "RNFL"_what: Rename(message); break;
    case "MKDR"_what: CreateDirectory(message); break;
    case "VWFL"_what: ViewFile(PathBelow(text("path"), text("file"))); break;
    case "VWDR"_what: ViewListing(text("path")); break;
    case "FRTR"_what:
    default: break;
  }
}

void ControlLooper::Connect() {
  cache_ = std::make_shared<ListingCache>();
  if (!Begin()) return;
  window_->SetPath(session_->Directory());
  const std::string file = EnterStartPath();
  Show(session_->Directory());
  if (!file.empty()) AskForDownload(file);
}

// The rows go before the window learns where the new connection stands: nothing is done to entries
// of the same names elsewhere.
void ControlLooper::ConnectAgain(const std::string& directory) {
  if (!cache_ || !session_->IsLost()) return;
  if (!Begin()) {
    window_->SetStatus(Text("Connection lost."));
    return;
  }
  window_->BeginListing();
  std::string where;
  if (!directory.empty()) TellOutcome(*window_, *session_, session_->Enter(directory, where));
  Show(session_->Directory());
}

// Logs in; false when that failed, which the user is told.
bool ControlLooper::Begin() {
  const Outcome outcome = session_->Connect();
  if (outcome.IsDone()) return true;
  if (outcome.kind == Outcome::Kind::Cancelled) return false;
  Message error("FERR"_what);
  error.AddText("error", outcome.text);
  window_->PostMessage(std::move(error));
  if (outcome.kind == Outcome::Kind::Lost) window_->PlaySound(Sound::LoginFailed);
  return false;
}

// Enters the site's path, if there is one. Where it names a file, enters the file's directory and
// returns its name.
std::string ControlLooper::EnterStartPath() {
  if (site_.path.empty()) return {};
  const std::string path = PathFrom(session_->Directory(), site_.path);
  std::string where;
  const Outcome entered = session_->Enter(path, where);
  if (entered.IsDone()) return {};
  if (entered.kind != Outcome::Kind::Refused) {
    TellOutcome(*window_, *session_, entered);
    return {};
  }
  const auto [directory, name] = SplitPath(path);
  std::optional<std::int64_t> size;
  if (!session_->Size(path, size).IsDone() || !size) {
    Warn(*window_, Text::WithReason(Text("The server has no directory or file %1.", site_.path),
                                    entered.text.Reason()));
    return {};
  }
  const Outcome above = session_->Enter(directory, where);
  TellOutcome(*window_, *session_, above);
  return above.IsDone() ? name : std::string();
}

// Shows a directory in the window.
void ControlLooper::Show(const std::string& directory) {
  shown_ = directory;
  window_->SetPath(directory);
  List(directory);
}

// A lister waits for this thread's lease, and would show its directory under another's path.
void ControlLooper::List(const std::string& directory) {
  if (lister_) lister_->Cancel();
  ListDirectory(*session_, *cache_, *window_, directory);
}

void ControlLooper::Refresh(const std::string& directory) {
  if (!NeedsConnection()) List(directory);
}

// A link that has a size leads to a file, any other to a directory.
void ControlLooper::FollowLink(const std::string& directory, const std::string& name) {
  if (NeedsConnection()) return;
  std::optional<std::int64_t> size;
  const Outcome asked = session_->Size(PathBelow(directory, name), size);
  if (asked.kind == Outcome::Kind::Lost) {
    TellLoss(*window_, *session_);
  } else if (!size) {
    ChangeDirectory(directory, name);
  } else if (window_->ChangeValues(name, *size)) {
    AskForDownload(name);
  }
}

void ControlLooper::AskForDownload(const std::string& name) {
  Message download("DWLD"_what);
  download.AddString("FileName", name);
  window_->PostMessage(std::move(download));
}

void ControlLooper::ChangeDirectory(const std::string& from, const std::string& to) {
  if (NeedsConnection()) return;
  std::string where;
  const Outcome entered = session_->Enter(PathFrom(from, to), where);
  if (!entered.IsDone()) {
    window_->SetPath(shown_);
    window_->SetStatus(Text("Connected."));
    TellOutcome(*window_, *session_, entered);
    return;
  }
  shown_ = where;
  window_->BeginListing();
  window_->SetPath(where);
  window_->SetStatus(Text("Connected."));
  if (lister_) lister_->Cancel();
  lister_ = std::make_shared<DirLister>(session_, cache_, window_, where);
  if (!lister_->Run()) {
    window_->EndListing(0);
    Warn(*window_, Text("The system has no thread left to fetch the listing."));
  }
}

void ControlLooper::Delete(const Message& entries) {
  if (NeedsConnection()) return;
  const std::string directory = entries.FindString("path").value_or("");
  Refusals refused;
  TreeRemover remover(*session_, *window_, refused, directory);
  const std::size_t count = entries.CountValues("name");
  for (std::size_t i = 0; i < count && !Quitting() && !session_->IsLost(); ++i) {
    const std::string name = entries.FindString("name", i).value_or("");
    const auto kind = static_cast<RemoteEntry::Kind>(entries.FindInt32("type", i).value_or(1));
    const bool deleted = remover.Remove(name, kind);
    window_->SetStatus(deleted ? Text("Deletion Success.") : Text("Deletion Failed."));
    if (deleted && !window_->RemoveEntry(name, directory)) return;
  }
  if (refused.Count() > 0) {
    Warn(*window_,
         Text::WithReason(Text("The server did not delete everything:"), refused.Lines()));
  }
  if (session_->IsLost()) TellLoss(*window_, *session_);
}

void ControlLooper::Rename(const Message& entry) {
  if (NeedsConnection()) return;
  const std::string directory = entry.FindString("path").value_or("");
  const std::string from = entry.FindString("original").value_or("");
  const std::string to = entry.FindString("renameto").value_or("");
  const Outcome outcome = session_->Rename(PathBelow(directory, from), PathFrom(directory, to));
  if (outcome.IsDone()) window_->RenameEntry(from, to, directory);
  TellOutcome(*window_, *session_, outcome);
}

void ControlLooper::CreateDirectory(const Message& entry) {
  if (NeedsConnection()) return;
  const std::string directory = entry.FindString("path").value_or("");
  const Outcome outcome =
      session_->MakeDirectory(PathFrom(directory, entry.FindString("name").value_or("")));
  if (outcome.IsDone() && directory == shown_) {
    List(directory);
  }
  TellOutcome(*window_, *session_, outcome);
}

void ControlLooper::ViewFile(const std::string& path) {
  if (NeedsConnection()) return;
  std::unique_ptr<RemoteFile> file;
  const Outcome opened = session_->OpenForReading(path, 0, file);
  if (!opened.IsDone()) {
    TellOutcome(*window_, *session_, opened);
    return;
  }
  if (const auto viewer = window_->OpenViewer(Text::Raw(SplitPath(path).second))) {
    FillViewer(*file, *viewer);
  }
  file.reset();
  if (session_->IsLost()) TellLoss(*window_, *session_);
}

// Until the data ends or stays away, or the text window has enough or is closed.
void ControlLooper::FillViewer(RemoteFile& file, TextSink& viewer) {
  constexpr long kStep = 250;  // milliseconds
  constexpr long kMostSilence = 120'000;
  std::vector<char> buffer(std::size_t{64} * 1024);
  for (;;) {
    for (long silence = 0; !file.Wait(kStep); silence += kStep) {
      if (!viewer.Append({})) return;
      if (silence < kMostSilence) continue;
      return viewer.End(Text("The file is not complete: %1", Text("The server does not answer")));
    }
    std::size_t count = 0;
    Outcome outcome = file.Read(buffer, count);
    if (outcome.IsDone() && count > 0) {
      const auto begin = buffer.begin();
      const auto end = std::remove(begin, begin + static_cast<std::ptrdiff_t>(count), '\r');
      if (viewer.Append({buffer.data(), static_cast<std::size_t>(end - begin)})) continue;
      return viewer.End({});
    }
    if (outcome.IsDone()) outcome = file.Finish();
    return viewer.End(
        outcome.IsDone() ? Text() : Text("The file is not complete: %1", outcome.text.Reason()));
  }
}

void ControlLooper::ViewListing(const std::string& directory) {
  if (cache_ && cache_->Directory() != directory && !session_->IsLost()) {
    List(directory);
  }
  const auto viewer = window_->OpenViewer(Text("Listing of: %1", directory));
  if (!viewer) return;
  const bool shown =
      cache_ && cache_->Directory() == directory &&
      cache_->Read([&viewer](std::string_view bytes) { return viewer->Append(bytes); });
  viewer->End(shown ? Text() : Text("The listing could not be read."));
}

// True, and the user has been told, where the connection is gone.
bool ControlLooper::NeedsConnection() {
  if (cache_ && !session_->IsLost()) return false;
  TellLoss(*window_, *session_);
  return true;
}

}  // namespace corvane
