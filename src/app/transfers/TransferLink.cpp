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
    report.label = {};
    report.trailing = {};
  });
}

bool TransferLink::SetStatus(const Text& text) {
  return Change([&text](TransferReport& report) { report.label = text; });
}

bool TransferLink::SetTrailing(const Text& text) {
  return Change([&text](TransferReport& report) { report.trailing = text; });
}

bool TransferLink::NoteEntry(const Text& text) {
  if (closing_) return false;
  {
    MutexLock hold(lock_);
    notes_.push_back(text);
  }
  progress_.changed = true;
  return true;
}

bool TransferLink::SetEndState(TransferEnd state, const Text& why) {
  const bool open = Change([state, &why](TransferReport& report) {
    report.end = state;
    if (!why.IsEmpty()) report.reason = why;
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
    messages_.push_back(std::move(message));
  }
  Hop();
  return true;
}

bool TransferLink::PlaySound(Sound sound) {
  SoundPlayer::Play(sound);
  return !closing_;
}

// A row keeps no log.
bool TransferLink::AppendLog(std::string_view /*line*/) {
  return !closing_;
}

bool TransferLink::Ask(const std::shared_ptr<UserQuestion>& question) {
  if (closing_) {
    question->Give(UserQuestion::Answer::No);
    return false;
  }
  {
    MutexLock hold(lock_);
    questions_.push_back(question);
  }
  Hop();
  return true;
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
  std::vector<Text> notes;
  std::vector<Message> messages;
  std::vector<std::shared_ptr<UserQuestion>> questions;
  {
    MutexLock hold(lock_);
    hopPending_ = false;
    report = report_;
    notes.swap(notes_);
    messages.swap(messages_);
    questions.swap(questions_);
  }
  if (closing_ || item_.isNull()) return;
  for (const Message& message : messages) item_->MessageReceived(message);
  for (const auto& question : questions) Q_EMIT item_->Asks(question);
  item_->Report(std::move(report), std::move(notes));
}

}  // namespace corvane
