#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "ftp/TransferUi.h"
#include "support/Recorder.h"

namespace corvane {

struct TransferRecord : OwnerRecord {
  std::vector<std::string> labels;
  std::vector<std::string> notes;
  std::optional<TransferEnd> end;  ///< once the transfer has ended
  std::string why;
};

/// A transfer row that only takes notes.
class RecordingTransferUi : public Recorder<TransferUi, TransferRecord> {
 public:
  TransferProgress& Progress() override { return progress_; }

  bool BeginFile(std::string_view) override { return !closing; }
  bool SetLabel(std::string_view text) override {
    return Note([&](TransferRecord& r) { r.labels.emplace_back(text); });
  }
  bool SetTrailing(std::string_view) override { return !closing; }
  bool NoteEntry(std::string_view text) override {
    return Note([&](TransferRecord& r) { r.notes.emplace_back(text); });
  }
  bool SetEndState(TransferEnd state, std::string_view why) override {
    return Note([&](TransferRecord& r) {
      r.end = state;
      r.why = why;
    });
  }

  /// The end state, once there is one.
  [[nodiscard]] std::optional<TransferEnd> End() const { return Seen().end; }

 private:
  TransferProgress progress_;
};

}  // namespace corvane
