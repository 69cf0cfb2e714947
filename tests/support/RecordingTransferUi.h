#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "remote/TransferUi.h"
#include "support/Recorder.h"

namespace corvane {

struct TransferRecord : OwnerRecord {
  std::vector<std::string> notes;
  std::optional<TransferEnd> end;  ///< once the transfer has ended
  std::string why;
};

/// A transfer row that only takes notes.
class RecordingTransferUi : public Recorder<TransferUi, TransferRecord> {
 public:
  TransferProgress& Progress() override { return progress_; }

  bool BeginFile(std::string_view) override { return !closing; }
  bool SetTrailing(const Text&) override { return !closing; }
  bool NoteEntry(const Text& text) override {
    return Note([&](TransferRecord& r) { r.notes.push_back(text.English()); });
  }
  bool SetEndState(TransferEnd state, const Text& why) override {
    return Note([&](TransferRecord& r) {
      r.end = state;
      r.why = why.English();
    });
  }

  /// The end state, once there is one.
  [[nodiscard]] std::optional<TransferEnd> End() const { return Seen().end; }

 private:
  TransferProgress progress_;
};

}  // namespace corvane
