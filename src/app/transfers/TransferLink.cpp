#include "app/transfers/TransferLink.h"

#include <utility>

#include "app/shared/GuiThread.h"
#include "app/shared/SoundPlayer.h"
#include "app/transfers/TransferItem.h"

namespace corvane {

TransferLink::TransferLink(TransferItem& item) : item_(&item) {}

bool TransferLink::BeginFile(std::string_view name) {
  return Change([name](TransferReport& report) {
    report.file = name;
    report.label.clear();
    report.trailing.clear();
  });
}

bool TransferLink::SetLabel(std::string_view text) {
  return Change([text](TransferReport& report) { report.label = text; });
}

bool TransferLink::SetTrailing(std::string_view text) {
  return Change([text](TransferReport& report) { report.trailing = text; });
}

bool TransferLink::NoteEntry(std::string_view text) {
  if (closing_) return false;
  {
    MutexLock hold(lock_);
    notes_.emplace_back(text);
  }
  progress_.changed = true;
  return true;
}

bool TransferLink::SetEndState(TransferEnd state, std::string_view why) {
  const bool open = Change([state, why](TransferReport& report) {
    report.end = state;
    if (!why.empty()) report.reason = why;
  });
  if (open) Hop();
  return open;
}

bool TransferLink::Change(const std::function<void(TransferReport&)>& change) {
  if (closing_) return false;
  {
    MutexLock hold(lock_);
    change(report_);
  }
  progress_.changed = true;
  return true;
}

bool TransferLink::PostMessage(Message message) {
  if (closing_) return false;
  {
    MutexLock hold(lock_);
    const bool fatal = message.what == "FERR"_what;
    if (fatal || message.what == "GERR"_what) {
      report_.reason = message.FindString(fatal ? "error" : "warning").value_or("");
    } else {
      messages_.push_back(std::move(message));
    }
  }
  Hop();
  return true;
}

bool TransferLink::PlaySound(std::string_view path) {
  SoundPlayer::Play(path);
  return !closing_;
}

void TransferLink::Hop() {
  {
    MutexLock hold(lock_);
    if (std::exchange(hopPending_, true)) return;
  }
  OnGuiThread([self = shared_from_this()] { self->Drain(); });
}

void TransferLink::Drain() {
  TransferReport report;
  std::vector<std::string> notes;
  std::vector<Message> messages;
  {
    MutexLock hold(lock_);
    hopPending_ = false;
    report = report_;
    notes.swap(notes_);
    messages.swap(messages_);
  }
  if (closing_ || item_.isNull()) return;
  for (const Message& message : messages) item_->MessageReceived(message);
  item_->Report(std::move(report), std::move(notes));
}

}  // namespace corvane
