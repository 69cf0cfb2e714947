#include "DriveRow.h"

#include <cstdio>
#include <sstream>
#include <string>
#include <utility>

#include "util/Encodings.h"

namespace corvane::drive {

void Complain(const Text& text) {
  std::istringstream lines(text.English());
  for (std::string line; std::getline(lines, line);)
    std::fprintf(stderr, "%s\n", DisplayText(line).c_str());
}

void Ends::Add(End end) {
  const std::lock_guard hold(lock_);
  ends_.push_back(std::move(end));
  changed_.notify_all();
}

void Ends::Wake() {
  const std::lock_guard hold(lock_);
  woken_ = true;
  changed_.notify_all();
}

std::vector<Ends::End> Ends::Wait(std::chrono::steady_clock::time_point until) {
  std::unique_lock hold(lock_);
  changed_.wait_until(hold, until, [this] { return woken_ || !ends_.empty(); });
  woken_ = false;
  return std::exchange(ends_, {});
}

bool Row::Ask(const std::shared_ptr<UserQuestion>& question) {
  using Answer = UserQuestion::Answer;
  const bool certificate = question->About().kind == UserQuestion::Kind::UnknownCertificate;
  question->Give(trustsAny_ && certificate ? Answer::Once : Answer::No);
  return true;
}

bool Row::NoteEntry(const Text& text) {
  if (!quiet_) Complain(text);
  return true;
}

bool Row::SetEndState(TransferEnd state, const Text& why) {
  if (ends_) ends_->Add({id_, state, why});
  return true;
}

}  // namespace corvane::drive
