#pragma once

#include <QObject>
#include <memory>
#include <string>
#include <vector>

#include "app/shared/TransferListener.h"
#include "app/shared/TransferNews.h"
#include "app/shared/TransferView.h"
#include "app/shared/TransferWords.h"
#include "app/transfers/TransferLink.h"
#include "workers/MThread.h"
#include "workers/transferStruct.h"

namespace corvane {

/// One transfer: what it is, how far it is, and the worker behind it. A row of the list, or what a
/// browser window shows of a transfer on its own connection. GUI thread. When it goes, a worker
/// that still runs is told to stop.
class TransferItem : public QObject {
  Q_OBJECT

 public:
  using MakeWorker = TransferView::MakeWorker;

  TransferItem(transferStruct description, TransferListener listener);
  ~TransferItem() override;

  /// Makes the worker and starts it. A worker that cannot start ends the transfer as failed.
  void Start(const MakeWorker& make);
  /// Whether what failed or was cancelled can be begun again: once the worker is done, and where
  /// the transfer is of one entry, so that what has come of it is known to be its own.
  [[nodiscard]] bool CanRetry() const;
  /// Begins again, and goes on with what has come. The notes are forgotten.
  void Retry(const MakeWorker& make);
  /// Ends a running transfer, at once for the user; the worker's own word follows.
  void Cancel();
  /// The row is going: stops the worker and hears no more of it.
  void LetGo();

  [[nodiscard]] bool Running() const { return !report_.end.has_value(); }
  /// Whether the worker itself has said how it ended.
  [[nodiscard]] bool IsSettled() const { return settled_; }
  [[nodiscard]] bool Failed() const { return !Running() && *report_.end != TransferEnd::Finished; }
  [[nodiscard]] bool Finished() const { return !Running() && !Failed(); }
  [[nodiscard]] bool WasCancelled() const { return report_.end == TransferEnd::Cancelled; }
  [[nodiscard]] bool IsDownload() const { return description_.download; }
  [[nodiscard]] bool HasNotes() const { return !notes_.empty(); }
  [[nodiscard]] TransferState State() const;
  /// Whether its row shows a line for each note.
  [[nodiscard]] bool IsOpen() const { return open_ && HasNotes(); }
  void SetOpen(bool open);
  /// How it ended, once it has.
  [[nodiscard]] TransferNews News() const;
  /// Where a download goes, raw: the file or folder where it is one, else the folder around them
  /// with a slash at its end.
  [[nodiscard]] std::string LocalPath() const;

  [[nodiscard]] const transferStruct& Description() const { return description_; }
  /// What the worker has said last.
  [[nodiscard]] const TransferReport& LastReport() const { return report_; }
  /// A line for each entry that failed or was left out.
  [[nodiscard]] const std::vector<Text>& Notes() const { return notes_; }
  [[nodiscard]] const TransferProgress& Progress() const { return link_->Progress(); }
  /// 0 to 1.
  [[nodiscard]] double Fraction() const;
  /// Bytes in a second, of the file that moves.
  [[nodiscard]] double Rate() const;
  /// Bytes that are still to come; -1 where that is not known.
  [[nodiscard]] std::int64_t Left() const;
  /// Whether it may move more than one file.
  [[nodiscard]] bool IsSeveral() const;

  [[nodiscard]] bool HasChanged() const { return link_->Progress().changed; }
  /// Takes in what the worker has said; true when there was anything new to show.
  [[nodiscard]] bool TakeChanged();

  /// From the link; `notes` are the new ones.
  void Report(TransferReport report, std::vector<Text> notes);
  void MessageReceived(const Message& message);

 Q_SIGNALS:
  /// It runs again.
  void Begun(corvane::TransferItem* item);
  /// It does not run any more. Once for each time it runs.
  void Ended(corvane::TransferItem* item);
  /// The worker's session asks the user something.
  void Asks(const std::shared_ptr<corvane::UserQuestion>& question);
  /// The state has changed. All else is polled by TakeChanged.
  void Changed(corvane::TransferItem* item);
  /// The worker has said how it ended. Once for each time it runs, and the last of all.
  void Settled(corvane::TransferItem* item);

 private:
  void LogNotes() const;
  /// Whether anything of it has arrived.
  [[nodiscard]] bool HasCome() const;

  transferStruct description_;
  TransferListener listener_;
  std::shared_ptr<TransferLink> link_;
  std::shared_ptr<MThread> worker_;
  TransferReport report_;
  std::vector<Text> notes_;
  bool settled_ = false;
  bool open_ = false;
};

}  // namespace corvane
