#pragma once

#include <QPointer>
#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "ftp/TransferUi.h"
#include "kit/Mutex.h"

namespace corvane {

class TransferItem;

/// What a transfer has told its row so far, apart from the progress. Raw bytes.
struct TransferReport {
  std::string file;      ///< the file in hand
  std::string label;     ///< a status text; replaced by the file's label when a file begins
  std::string trailing;  ///< the text behind the bar, where the transfer gives one
  std::string reason;    ///< what failed
  std::vector<std::string> notes;  ///< a line for each entry that failed or was left out
  std::optional<TransferEnd> end;
};

/// A transfer row as its worker sees it; outlives the row. Changes are collected here and handed to
/// the row at most once per turn of the event loop.
class TransferLink final : public TransferUi, public std::enable_shared_from_this<TransferLink> {
 public:
  /// GUI thread.
  explicit TransferLink(TransferItem& item);

  /// GUI thread: from now on every call answers false and nothing reaches the row.
  void Close() { closing_ = true; }

  [[nodiscard]] TransferProgress& Progress() override { return progress_; }
  bool BeginFile(std::string_view name) override;
  bool SetLabel(std::string_view text) override;
  bool SetTrailing(std::string_view text) override;
  bool NoteEntry(std::string_view text) override;
  bool SetEndState(TransferEnd state, std::string_view why) override;
  bool PostMessage(Message message) override;
  bool PlaySound(std::string_view path) override;

 private:
  bool Change(const std::function<void(TransferReport&)>& change) EXCLUDES(lock_);
  void Hop() EXCLUDES(lock_);
  void Drain() EXCLUDES(lock_);

  const QPointer<TransferItem> item_;  // looked at on the GUI thread only
  std::atomic<bool> closing_{false};
  TransferProgress progress_;
  Mutex lock_;
  TransferReport report_ GUARDED_BY(lock_);
  std::vector<Message> messages_ GUARDED_BY(lock_);
  bool hopPending_ GUARDED_BY(lock_) = false;
};

}  // namespace corvane
