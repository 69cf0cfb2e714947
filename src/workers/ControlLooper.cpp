#include "workers/ControlLooper.h"

#include <optional>
#include <utility>

#include "remote/RemotePath.h"
#include "workers/DirLister.h"
#include "workers/FileViewer.h"
#include "workers/ListingCache.h"
#include "workers/Notices.h"

namespace corvane {
namespace {

/// The request that no user makes; the status says nothing of it.
constexpr std::uint32_t kUnasked = "STAT"_what;

/// What is said while a request is carried out; empty where that is said more closely.
Text Doing(const Message& request) {
  switch (request.what) {
    case "PCHN"_what: return Text("Changing Dir..");
    case "HSYM"_what: return Text("Asking where the link leads …");
    case "DELE"_what: return Text("Deleting …");
    case "RNFL"_what: return Text("Renaming …");
    case "MKDR"_what: return Text("Creating the directory …");
    case "MOVE"_what: return Text("Moving …");
    case "DUPL"_what: return Text("Duplicating …");
    case "VWFL"_what: return Text("Fetching %1 …", request.FindString("file").value_or(""));
    default: return {};
  }
}

/// Has the looper ask how much room there is in the directory that was listed.
void AskLater(Looper& looper, const std::string& directory) {
  Message room("FREE"_what);
  room.AddString("path", directory);
  (void)looper.PostMessage(std::move(room));
}

}  // namespace

ControlLooper::ControlLooper(Site site, std::shared_ptr<RemoteSession> session,
                             std::shared_ptr<BrowserUi> window)
    : Looper("control"),
      site_(std::move(site)),
      session_(std::move(session)),
      window_(std::move(window)),
      turn_(*session_),
      asking_(*session_),
      relogin_(*session_, *window_),
      changes_(*session_, *window_, turn_.Stopped()) {}

ControlLooper::~ControlLooper() {
  session_->Close();
}

void ControlLooper::Interrupt() {
  turn_.Stop();
  asking_.Stop();
  session_->Close();
}

// A request goes before what nobody has asked for.
void ControlLooper::Arrived(std::uint32_t what) {
  if (what != "FREE"_what) asking_.Stop();
}

void ControlLooper::Stop() {
  turn_.Stop();
  const MutexLock hold(lock_);
  if (lister_) lister_->Stop();
}

void ControlLooper::MessageReceived(const Message& message) {
  if (message.what == "FREE"_what) return AskAround(message.FindString("path").value_or(""));
  turn_.Begin();
  {
    const EngineLease lease = Lease(message.what != kUnasked);
    Outcome outcome = Outcome::Cancelled();
    if (lease && turn_.Work()) {
      try {
        outcome = CarryOut(message);
      } catch (const std::exception& error) {
        outcome =
            Outcome::LocalError(Text("The request could not be carried out: %1", error.what()));
      }
    }
    turn_.End();
    Tell(outcome);
    keepsAlive_ = lease && !session_->IsLost();
  }
  Message done("DONE"_what);
  done.AddInt32("request", static_cast<std::int32_t>(message.what));
  if (turn_.Stopped()) done.AddBool("stopped", true);
  window_->PostMessage(std::move(done));
  if (!postponed_.empty()) AskLater(*this, std::exchange(postponed_, {}));
}

std::chrono::milliseconds ControlLooper::Patience() {
  return keepsAlive_ ? std::chrono::seconds(site_.keepAlive) : std::chrono::seconds(0);
}

// A connection that a transfer uses is alive. That one has gone is noticed by the next request.
void ControlLooper::Idle() {
  asking_.Begin();
  const std::atomic<bool> atOnce{true};
  const EngineLease lease(*session_, atOnce);
  if (lease && !IsWaitedFor() && asking_.Work()) {
    keepsAlive_ = session_->IsAlive() && session_->KeepAlive().kind != Outcome::Kind::Lost;
  }
  asking_.End();
}

void ControlLooper::AskAround(const std::string& directory) {
  asking_.Begin();
  const EngineLease lease(*session_, asking_.Stopped());
  if (lease && !IsWaitedFor() && directory == shown_ && asking_.Work() && session_->IsAlive()) {
    if (tellsFeatures_) TellFeatures();
    TellFreeSpace(directory);
  }
  postponed_ = IsWaitedFor() ? directory : std::string();
  asking_.End();
}

void ControlLooper::TellFeatures() {
  bool can = false;
  if (!session_->CanCopy(can).IsDone()) return;
  tellsFeatures_ = false;
  Message features("CAPS"_what);
  features.AddInt32("copy", can ? 1 : 0);
  features.AddInt32("times", session_->SetsTimes() ? 1 : 0);
  window_->PostMessage(std::move(features));
}

void ControlLooper::TellFreeSpace(const std::string& directory) {
  std::optional<std::int64_t> bytes;
  if (!session_->FreeSpace(directory, bytes).IsDone() || !bytes) return;
  Message room("FREE"_what);
  room.AddInt64("bytes", *bytes);
  window_->PostMessage(std::move(room));
}

// A transfer on this connection may hold it for long.
EngineLease ControlLooper::Lease(bool tells) {
  const std::atomic<bool> atOnce{true};
  EngineLease lease(*session_, atOnce);
  if (lease) return lease;
  if (tells) window_->SetStatus(Text("Waiting until the connection is free …"));
  return EngineLease(*session_, turn_.Stopped());
}

Outcome ControlLooper::CarryOut(const Message& message) {
  verdict_ = message.what == kUnasked ? Text() : Text("Connected.");
  if (message.what == "CNNT"_what) return Connect();
  if (message.what == "RCNN"_what) return ConnectAgain(message.FindString("path").value_or(""));
  if (!cache_) return {Outcome::Kind::Lost, 0, session_->HowLost().why};
  if (message.what == kUnasked && session_->IsLost()) return {};
  const bool cached =
      message.what == "VWDR"_what && cache_->Directory() == message.FindString("path");
  if (cached && session_->IsLost()) return Handle(message);
  if (Outcome ready = relogin_.Ready(); !ready.IsDone()) return ready;
  Outcome outcome = Handle(message);
  if (!relogin_.MayRepeat(outcome)) return outcome;
  if (Outcome again = relogin_.LogIn(); !again.IsDone()) return again;
  return Handle(message);
}

void ControlLooper::Tell(const Outcome& outcome) {
  if (outcome.kind == Outcome::Kind::Lost) return relogin_.TellLoss();
  const bool stopped = outcome.kind == Outcome::Kind::Cancelled;
  if (stopped) verdict_ = Text("Stopped.");
  if (!verdict_.IsEmpty()) window_->SetStatus(verdict_);
  if (!stopped && !outcome.text.IsEmpty()) Warn(*window_, outcome.text);
}

Outcome ControlLooper::Handle(const Message& message) {
  const auto text = [&message](const char* field) {
    return message.FindString(field).value_or("");
  };
  if (const Text doing = Doing(message); !doing.IsEmpty()) window_->SetStatus(doing);
  if (!relogin_.Said().IsEmpty()) verdict_ = relogin_.Said();
  switch (message.what) {
    case "CRDR"_what: return List(text("path"));
    case "PCHN"_what: return ChangeDirectory(text("path"), text("cwd"));
    case "HSYM"_what: return FollowLink(text("path"), text("sym"));
    case "DELE"_what: return changes_.Delete(message, verdict_);
    case "RNFL"_what: return changes_.Rename(message);
    case "MKDR"_what: return CreateDirectory(message);
    case "MOVE"_what: return changes_.Move(message);
    case "DUPL"_what: return changes_.Duplicate(message);
    case "STAT"_what: return changes_.LookAt(message);
    case "VWFL"_what: return ViewFile(*session_, *window_, PathBelow(text("path"), text("file")));
    case "VWDR"_what: return ViewListing(text("path"));
    case "FRTR"_what:
    default: return {};
  }
}

Outcome ControlLooper::Connect() {
  cache_ = std::make_shared<ListingCache>();
  using State = ConnectStep::State;
  OpeningStep(State::Waiting);
  if (const Outcome outcome = session_->Connect(); !outcome.IsDone()) return Refused(outcome);
  OpeningStep(State::Running);
  tellsFeatures_ = true;
  window_->SetPath(session_->Directory());
  std::string file;
  Outcome entered = EnterStartPath(file);
  if (entered.IsDone()) OpeningStep(State::Done);
  Outcome shown = Show(session_->Directory());
  if (!file.empty()) AskForDownload(file);
  if (!entered.text.IsEmpty() && shown.IsDone()) return entered;
  return shown;
}

// Another request may have logged in anew, and the window waits all the same.
//
// The rows go before the window learns where the new connection stands: nothing is done to entries
// of the same names elsewhere.
Outcome ControlLooper::ConnectAgain(const std::string& directory) {
  if (!cache_) return {};
  if (session_->IsLost()) {
    if (const Outcome outcome = session_->Connect(); !outcome.IsDone()) return Refused(outcome);
    relogin_.Mended();
    tellsFeatures_ = true;
  }
  window_->BeginListing();
  std::string where;
  if (!directory.empty()) TellOutcome(*window_, *session_, session_->Enter(directory, where));
  return Show(session_->Directory(), true);
}

void ControlLooper::OpeningStep(ConnectStep::State state) {
  using State = ConnectStep::State;
  const std::string& path = site_.path;
  const Text running =
      path.empty() ? Text("Opening the first directory …") : Text("Opening %1 …", path);
  if (state == State::Running) window_->SetStatus(running);
  const Text waiting =
      path.empty() ? Text("Opening the first directory") : Text("Opening %1", path);
  window_->ShowStep(
      {ConnectStep::Kind::Directory, state, state == State::Running ? running : waiting});
}

// Tells the user why there is no connection.
Outcome ControlLooper::Refused(const Outcome& outcome) {
  if (outcome.kind == Outcome::Kind::Cancelled) return outcome;
  verdict_ = Text("Not connected.");
  Message error("FERR"_what);
  error.AddText("error", outcome.text);
  error.AddInt32("kind", static_cast<std::int32_t>(outcome.trouble));
  if (const Text advice = AdviceFor(outcome); !advice.IsEmpty()) error.AddText("advice", advice);
  if (!outcome.server.empty()) error.AddString("server", outcome.server);
  window_->PostMessage(std::move(error));
  if (outcome.kind == Outcome::Kind::Lost) window_->PlaySound(Sound::LoginFailed);
  return {};
}

// Enters the site's path, if there is one. Where it names a file, enters the file's directory and
// tells its name.
Outcome ControlLooper::EnterStartPath(std::string& file) {
  if (site_.path.empty()) return {};
  const std::string path = PathFrom(session_->Directory(), site_.path);
  std::string where;
  Outcome entered = session_->Enter(path, where);
  if (entered.kind != Outcome::Kind::Refused) return entered;
  const auto [directory, name] = SplitPath(path);
  std::optional<std::int64_t> size;
  if (!session_->Size(path, size).IsDone() || !size) {
    entered.text = Text::WithReason(Text("The server has no directory or file %1.", site_.path),
                                    entered.text.Reason());
    return entered;
  }
  Outcome above = session_->Enter(directory, where);
  if (above.IsDone()) file = name;
  return above;
}

// Shows a directory in the window.
Outcome ControlLooper::Show(const std::string& directory, bool emptied) {
  shown_ = directory;
  window_->SetPath(directory);
  return List(directory, emptied);
}

// A lister waits for this thread's lease, and would show its directory under another's path.
Outcome ControlLooper::List(const std::string& directory, bool emptied) {
  LetListerGo();
  Outcome outcome = ListDirectory(*session_, *cache_, *window_, directory, emptied);
  if (outcome.IsDone()) AskLater(*this, directory);
  return outcome;
}

void ControlLooper::LetListerGo() {
  const MutexLock hold(lock_);
  if (lister_) lister_->Cancel();
  lister_.reset();
}

// A link that has a size leads to a file, any other to a directory.
Outcome ControlLooper::FollowLink(const std::string& directory, const std::string& name) {
  std::optional<std::int64_t> size;
  Outcome asked = session_->Size(PathBelow(directory, name), size);
  using Kind = Outcome::Kind;
  if (asked.kind == Kind::Lost || asked.kind == Kind::Cancelled) return asked;
  if (!size) return ChangeDirectory(directory, name);
  if (window_->ChangeValues(name, *size)) AskForDownload(name);
  return {};
}

void ControlLooper::AskForDownload(const std::string& name) {
  Message download("DWLD"_what);
  download.AddString("FileName", name);
  window_->PostMessage(std::move(download));
}

Outcome ControlLooper::ChangeDirectory(const std::string& from, const std::string& to) {
  std::string where;
  const std::string path = PathFrom(from, to);
  if (Outcome entered = session_->Enter(path, where); !entered.IsDone()) {
    const bool ended =
        entered.kind == Outcome::Kind::Lost || entered.kind == Outcome::Kind::Cancelled;
    if (ended) return entered;
    WarnOfPath(*window_, path, entered);
    return {};
  }
  shown_ = where;
  window_->BeginListing();
  window_->SetPath(where);
  StartLister(where);
  return {};
}

void ControlLooper::StartLister(const std::string& directory) {
  LetListerGo();
  const auto lister =
      std::make_shared<DirLister>(session_, cache_, window_, directory, std::exchange(verdict_, {}),
                                  [weak = weak_from_this(), directory] {
                                    if (const auto looper = weak.lock())
                                      AskLater(*looper, directory);
                                  });
  {
    const MutexLock hold(lock_);
    lister_ = lister;
    if (turn_.Stopped()) lister_->Stop();
  }
  if (lister->Run()) return;
  window_->EndListing(0, false);
  Warn(*window_, Text("The system has no thread left to fetch the listing."));
}

Outcome ControlLooper::CreateDirectory(const Message& entry) {
  const std::string directory = entry.FindString("path").value_or("");
  Outcome made =
      session_->MakeDirectory(PathFrom(directory, entry.FindString("name").value_or("")));
  return made.IsDone() && directory == shown_ ? List(directory) : made;
}

Outcome ControlLooper::ViewListing(const std::string& directory) {
  Outcome listed;
  if (cache_->Directory() != directory) listed = List(directory);
  corvane::ViewListing(*cache_, *window_, directory);
  return listed;
}

}  // namespace corvane
