#pragma once

#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

#include "DriveOptions.h"
#include "queue/QueueJournal.h"
#include "remote/TransferUi.h"

namespace corvane::drive {

/// Shows a text on the error output: its own line ends stay, all else that is hostile becomes
/// visible.
void Complain(const Text& text);

/// How transfers end, for who waits for it. Any thread.
class Ends {
 public:
  struct End {
    RowId row = 0;
    TransferEnd state = TransferEnd::Failed;
    Text why{};
  };
  void Add(End end);
  /// Ends a wait, or the next one.
  void Wake();
  /// What has ended, in its order; nothing where `until` passed first, or it was woken.
  [[nodiscard]] std::vector<End> Wait(std::chrono::steady_clock::time_point until);

 private:
  std::mutex lock_;
  std::condition_variable changed_;
  std::vector<End> ends_;
  bool woken_ = false;
};

/// A transfer's row that nobody sees; also the owner of a session without a transfer.
class Row final : public TransferUi {
 public:
  /// `ends` may be null.
  Row(const Options& options, RowId id, std::shared_ptr<Ends> ends)
      : trustsAny_(options.trustsAny), quiet_(options.quiet), id_(id), ends_(std::move(ends)) {}

  TransferProgress& Progress() override { return progress_; }
  bool BeginFile(std::string_view /*name*/) override { return true; }
  bool SetTrailing(const Text& /*text*/) override { return true; }
  bool SetStatus(const Text& /*text*/) override { return true; }
  bool AppendLog(std::string_view /*line*/) override { return true; }
  bool PostMessage(Message /*message*/) override { return true; }
  bool PlaySound(Sound /*sound*/) override { return true; }
  bool Ask(const std::shared_ptr<UserQuestion>& question) override;
  bool NoteEntry(const Text& text) override;
  bool SetEndState(TransferEnd state, const Text& why) override;

 private:
  const bool trustsAny_;
  const bool quiet_;
  const RowId id_;
  const std::shared_ptr<Ends> ends_;
  TransferProgress progress_;
};

}  // namespace corvane::drive
