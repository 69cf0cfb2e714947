#include "workers/TransferNotes.h"

#include "remote/TransferUi.h"

namespace corvane {

void TransferNotes::Failed(const std::string& shown, const Outcome& outcome) {
  ++failed_;
  failedEntry_ = shown;
  why_ = outcome.text;
  if (entries_ > 1 || (entries_ == 1 && chosen_ > 1)) Note(Text("%1: %2", shown, why_.Reason()));
}

void TransferNotes::Note(const Text& text) {
  if (++notes_ <= kMaxNotes) row_.NoteEntry(text);
  if (notes_ == kMaxNotes) row_.NoteEntry(Text("What follows is not listed any more."));
}

Text TransferNotes::Summary() const {
  if (failed_ == 0 || entries_ <= 1) return why_;
  if (stopped_) {
    return Text("%1 of %2 entries failed; stopped at %3: %4", failed_, entries_, failedEntry_,
                why_.Reason());
  }
  if (failed_ > 1) return Text("%1 of %2 entries failed.", failed_, entries_);
  return Text("%1 of %2 entries failed: %3: %4", failed_, entries_, failedEntry_, why_.Reason());
}

}  // namespace corvane
