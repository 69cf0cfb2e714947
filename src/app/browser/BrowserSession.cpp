#include "app/browser/BrowserSession.h"

#include <QApplication>
#include <algorithm>
#include <utility>

#include "app/browser/BrowserEvents.h"
#include "app/browser/BrowserLink.h"

namespace corvane {
namespace {

/// Whether a request may end in a new listing.
bool Lists(std::uint32_t request) {
  switch (request) {
    case "CNNT"_what:
    case "RCNN"_what:
    case "PCHN"_what:
    case "HSYM"_what:
    case "MKDR"_what: return true;
    default: return false;
  }
}

}  // namespace

BrowserSession::BrowserSession(BrowserEvents& window, Site site)
    : window_(window),
      site_(std::move(site)),
      link_(std::make_shared<BrowserLink>(*this, site_.encoding)) {}

BrowserSession::~BrowserSession() {
  End();
}

// What an earlier connection still says goes to a link that nobody reads.
void BrowserSession::Begin(const WorkerFactory& workers, Site site) {
  site_ = std::move(site);
  if (looper_ != nullptr) {
    End();
    link_ = std::make_shared<BrowserLink>(*this, site_.encoding);
  }
  looper_ = workers.looper(site_, link_);
  if (!looper_->Run() || !Send(Message("CNNT"_what))) FailToStart();
}

void BrowserSession::FailToStart() {
  Message error("FERR"_what);
  error.AddText("error", Text::WithReason(Text("The connection could not be begun."),
                                          Text("The system has no thread to give.")));
  PostToWindow(std::move(error));
}

void BrowserSession::End() {
  link_->Close();
  if (looper_ != nullptr) looper_->Quit();
  looper_.reset();
  pending_ = 0;
  asked_ = 0;
  deleting_ = 0;
  arriving_ = false;
  looking_ = false;
  toLookAt_.MakeEmpty();
}

const std::string& BrowserSession::Place() const {
  return currentDirectory_.empty() ? site_.path : currentDirectory_;
}

void BrowserSession::ChangeDirectory(const std::string& where) {
  Message message("PCHN"_what);
  message.AddString("cwd", where);
  Send(std::move(message));
}

void BrowserSession::FollowLink(const std::string& name) {
  Message message("HSYM"_what);
  message.AddString("sym", name);
  Send(std::move(message));
}

// What waits and belongs to a directory that is shown no more is let go of.
void BrowserSession::LookAt(const std::string& name, std::int32_t type, std::int64_t size) {
  if (toLookAt_.FindString("path") != currentDirectory_) {
    toLookAt_.MakeEmpty();
    toLookAt_.AddString("path", currentDirectory_);
  }
  toLookAt_.AddString("name", name);
  toLookAt_.AddInt32("type", type);
  toLookAt_.AddInt64("size", size);
  if (!looking_) SendLook();
}

void BrowserSession::SendLook() {
  looking_ =
      toLookAt_.CountValues("name") > 0 && Send(std::exchange(toLookAt_, Message("STAT"_what)));
}

void BrowserSession::Stop() {
  if (looper_ != nullptr) looper_->Stop();
}

void BrowserSession::ConnectAgain() {
  Send(Message("RCNN"_what));
}

// A full queue means a hundred requests are waiting; one more would not be noticed.
bool BrowserSession::Send(Message message) {
  if (!currentDirectory_.empty() && !message.FindString("path")) {
    message.AddString("path", currentDirectory_);
  }
  const std::uint32_t request = message.what;
  if (looper_ == nullptr || !looper_->PostMessage(std::move(message))) {
    QApplication::beep();
    return false;
  }
  ++pending_;
  if (Lists(request)) ++asked_;
  if (request == "DELE"_what) ++deleting_;
  Q_EMIT ReadyChanged();
  return true;
}

void BrowserSession::Log(std::string_view text) {
  link_->AppendLog(text);
}

void BrowserSession::PostToWindow(Message message) {
  link_->PostMessage(std::move(message));
}

void BrowserSession::Entered(const std::string& path) {
  connected_ = true;
  currentDirectory_ = path;
  window_.ShowPath(path);
}

void BrowserSession::ListingBegan() {
  arriving_ = true;
  Q_EMIT ReadyChanged();
  window_.GetRidofListing();
}

void BrowserSession::ListingEnded(bool whole) {
  arriving_ = false;
  window_.ListingEnded(whole);
  Q_EMIT ReadyChanged();
}

void BrowserSession::NoteEnd(const Message& message) {
  if (message.what == "DONE"_what) {
    const auto request = static_cast<std::uint32_t>(message.FindInt32("request").value_or(0));
    pending_ = std::max(pending_ - 1, 0);
    if (Lists(request)) asked_ = std::max(asked_ - 1, 0);
    if (request == "DELE"_what) deleting_ = std::max(deleting_ - 1, 0);
    if (request == "STAT"_what) SendLook();
  }
}

void BrowserSession::MessageReceived(const Message& message) {
  NoteEnd(message);
  Q_EMIT ReadyChanged();
  window_.MessageReceived(message);
}

}  // namespace corvane
