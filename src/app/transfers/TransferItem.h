#pragma once

#include <QObject>
#include <memory>
#include <string>
#include <vector>

#include "app/shared/TransferListener.h"
#include "app/shared/TransferNews.h"
#include "app/shared/TransferView.h"
#include "app/shared/TransferWords.h"
#include "app/transfers/PaceMeter.h"
#include "app/transfers/RowStanding.h"
#include "app/transfers/TransferLink.h"
#include "queue/JobBoard.h"
#include "queue/transferStruct.h"
#include "workers/MThread.h"

namespace corvane {

/// One transfer: what it is, how it stands, how far it is, and the worker behind it while one
/// carries it out. A row of the list, whose queue says when it runs, or what a browser window shows
/// of a transfer on its own connection. GUI thread. When it goes, a worker that still runs is told
/// to stop.
class TransferItem : public QObject {
  Q_OBJECT

 public:
  using MakeWorker = TransferView::MakeWorker;
  using Clock = PaceMeter::Time::clock;

  /// A new one, or a row that was kept: `board` holds its jobs, or is null where they stand in
  /// `description`.
  TransferItem(transferStruct description, TransferListener listener, RowId id = 0,
               std::shared_ptr<JobBoard> board = {});
  ~TransferItem() override;

  [[nodiscard]] RowId Id() const { return id_; }
  /// Makes a worker, which carries out what is left, and starts it. A worker that cannot start ends
  /// this run as failed.
  void Start(const MakeWorker& make);
  /// Tells the worker to stop; its word on how it ended follows.
  void Stop();
  /// The network may be another one by now: what has lost its connection is soon to say so.
  void CheckConnections() {
    if (worker_ != nullptr) worker_->CheckConnections();
  }
  /// With the next start, what has failed is tried once more. Its notes are forgotten then.
  void TakeUpFailed() { retries_ = true; }
  /// The row is going: stops the worker and hears no more of it.
  void LetGo();

  void SetStanding(const RowStanding& standing);
  [[nodiscard]] RowState Stands() const { return standing_.state; }
  [[nodiscard]] TransferState State() const;
  [[nodiscard]] bool Running() const { return standing_.state == RowState::Running; }
  /// Whether it is part of other work, which tells of it.
  [[nodiscard]] bool IsQuiet() const { return listener_.quiet; }
  /// Whether nothing more happens by itself.
  [[nodiscard]] bool HasEnded() const { return Failed() || Finished(); }
  /// Whether it ended and is not done.
  [[nodiscard]] bool Failed() const {
    return standing_.state == RowState::Failed || WasCancelled();
  }
  [[nodiscard]] bool Finished() const { return standing_.state == RowState::Done; }
  [[nodiscard]] bool WasCancelled() const { return standing_.state == RowState::Cancelled; }
  /// Whether a worker still carries it out, maybe only to its end.
  [[nodiscard]] bool IsCarried() const { return worker_ != nullptr; }
  [[nodiscard]] bool IsDownload() const { return description_.download; }
  [[nodiscard]] bool HasNotes() const { return !notes_.empty(); }
  /// Whether its row shows a line for each note.
  [[nodiscard]] bool IsOpen() const { return open_ && HasNotes(); }
  void SetOpen(bool open);
  /// How it ended, once it has.
  [[nodiscard]] TransferNews News() const;
  /// Where a download goes, raw: the file or folder where it is one, else the folder around them
  /// with a slash at its end.
  [[nodiscard]] std::string LocalPath() const;
  /// Where it stands on the server: the file or directory where it is one, else the directory
  /// around them.
  [[nodiscard]] std::string RemotePath() const;

  /// What it is, without its jobs.
  [[nodiscard]] const transferStruct& Description() const { return description_; }
  /// With what was not kept of it.
  void SetSite(Site site) { description_.site = std::move(site); }
  /// The first entry that was chosen, and how many there are.
  [[nodiscard]] const TransferJob& First() const { return first_; }
  [[nodiscard]] int Chosen() const { return chosen_; }
  /// What the worker has said last.
  [[nodiscard]] const TransferReport& LastReport() const { return report_; }
  /// A line for each entry that failed or was left out.
  [[nodiscard]] const std::vector<Text>& Notes() const { return notes_; }
  [[nodiscard]] const TransferProgress& Progress() const { return link_->Progress(); }
  [[nodiscard]] JobBoard::Count Counted() const { return board_->Counted(); }
  [[nodiscard]] const RowStanding& Standing() const { return standing_; }
  /// Bytes that have arrived, those of an earlier run included.
  [[nodiscard]] std::int64_t There() const;
  /// 0 to 1.
  [[nodiscard]] double Fraction() const;
  /// Bytes in a second, of late.
  [[nodiscard]] double Rate() const;
  /// Bytes in a second, while bytes were moving.
  [[nodiscard]] double Mean() const;
  /// Seconds for which nothing has moved; 0 where that is nothing to speak of.
  [[nodiscard]] int Stalled() const;
  /// Seconds until it is tried again.
  [[nodiscard]] int Seconds() const;
  /// Bytes that are still to come; -1 where that is not known.
  [[nodiscard]] std::int64_t Left() const;
  /// Whether it may move more than one file.
  [[nodiscard]] bool IsSeveral() const;

  [[nodiscard]] bool HasChanged() const { return link_->Progress().changed; }
  /// Takes in what the worker has said and measures its pace; true when there is anything new to
  /// show.
  [[nodiscard]] bool TakeChanged();

  /// From the link; `notes` are the new ones.
  void Report(TransferReport report, std::vector<Text> notes);
  void MessageReceived(const Message& message);

 Q_SIGNALS:
  /// It stands otherwise than before.
  void Restated(corvane::RowState before, corvane::RowState now);
  /// The worker's session asks the user something.
  void Asks(const std::shared_ptr<corvane::UserQuestion>& question);
  /// How it stands has changed. All else is polled by TakeChanged.
  void Changed(corvane::TransferItem* item);
  /// The worker has said how this run ended, and is gone. Once for each start.
  void Settled(corvane::TransferItem* item, corvane::TransferEnd end);

 private:
  void BeginProgress();
  void LogNotes();

  const RowId id_;
  transferStruct description_;
  TransferJob first_;
  int chosen_ = 0;
  TransferListener listener_;
  std::shared_ptr<JobBoard> board_;
  std::shared_ptr<TransferLink> link_;
  std::shared_ptr<MThread> worker_;
  RowStanding standing_;
  TransferReport report_;
  std::vector<Text> notes_;
  std::size_t logged_ = 0;  // of the notes
  PaceMeter pace_;
  std::int64_t reached_ = 0;  // bytes that had arrived when somebody last looked
  int told_ = 0;              // seconds that were shown last
  bool retries_ = false;
  bool open_ = false;
};

}  // namespace corvane
