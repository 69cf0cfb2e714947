#include "workers/TransferNotes.h"

#include "remote/TransferUi.h"

namespace corvane {

namespace {

// A path as a part of a sentence.
std::string Short(const std::string& path) {
  constexpr std::size_t kLongest = 1024;
  return path.size() <= kLongest ? path : path.substr(0, kLongest) + "...";
}

}  // namespace

void TransferNotes::Failed(const std::string& shown, const Outcome& outcome, bool alone) {
  {
    const MutexLock hold(lock_);
    failedEntry_ = Short(shown);
    why_ = outcome.text;
  }
  if (!alone) Note(Text("%1: %2", Short(shown), outcome.text.Reason()));
}

void TransferNotes::Note(const Text& text) {
  int number = 0;
  {
    const MutexLock hold(lock_);
    number = ++notes_;
  }
  if (number <= kMaxNotes) row_.NoteEntry(text);
  if (number == kMaxNotes) row_.NoteEntry(Text("What follows is not listed any more."));
}

Text TransferNotes::Why() const {
  const MutexLock hold(lock_);
  return why_;
}

std::string TransferNotes::FailedEntry() const {
  const MutexLock hold(lock_);
  return failedEntry_;
}

}  // namespace corvane
