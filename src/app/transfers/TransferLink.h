#pragma once

#include <QPointer>
#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "kit/Mutex.h"
#include "remote/TransferUi.h"

namespace corvane {

class TransferItem;

/// What a transfer has told its row so far, apart from the progress.
struct TransferReport {
  std::string file;  ///< the file that moves, or moved last
  Text label;        ///< a status; replaced by the file's label when a file begins
  Text trailing;     ///< the text behind the bar, where the transfer gives one
  Text reason;       ///< what failed
  std::optional<TransferEnd> end;
};

/// A transfer row as its worker sees it; outlives the row. What changes is collected here.
/// Messages, questions and the end are handed to the row in the next turn of the event loop; all
/// else, like the progress, when the row is next looked at.
class TransferLink final : public TransferUi, public std::enable_shared_from_this<TransferLink> {
 public:
  /// GUI thread.
  explicit TransferLink(TransferItem& item);

  /// GUI thread: from now on every call returns false and nothing reaches the row.
  void Close() { closing_ = true; }
  /// GUI thread: hands the row what has been collected.
  void Drain() EXCLUDES(lock_);

  [[nodiscard]] TransferProgress& Progress() override { return progress_; }
  bool BeginFile(std::string_view name) override;
  bool SetTrailing(const Text& text) override;
  bool NoteEntry(const Text& text) override;
  bool SetEndState(TransferEnd state, const Text& why) override;
  bool PostMessage(Message message) override;
  bool PlaySound(Sound sound) override;
  bool SetStatus(const Text& text) override;
  bool AppendLog(std::string_view line) override;
  bool Ask(const std::shared_ptr<UserQuestion>& question) override;

 private:
  bool Change(const std::function<void(TransferReport&)>& change) EXCLUDES(lock_);
  void Hop() EXCLUDES(lock_);

  const QPointer<TransferItem> item_;  // looked at on the GUI thread only
  std::atomic<bool> closing_{false};
  TransferProgress progress_;
  Mutex lock_;
  TransferReport report_ GUARDED_BY(lock_);
  std::vector<Text> notes_ GUARDED_BY(lock_);
  std::vector<Message> messages_ GUARDED_BY(lock_);
  std::vector<std::shared_ptr<UserQuestion>> questions_ GUARDED_BY(lock_);
  bool hopPending_ GUARDED_BY(lock_) = false;
};

}  // namespace corvane
