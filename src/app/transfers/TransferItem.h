#pragma once

#include <QObject>
#include <QPointer>
#include <QString>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "app/transfers/TransferLink.h"
#include "remote/Site.h"
#include "workers/MThread.h"
#include "workers/transferStruct.h"

namespace corvane {

class MWindow;

/// One transfer: what it is, how far it is, and the worker behind it. A row of the list, or what a
/// browser window shows of a transfer on its own connection. GUI thread. When it goes, a worker
/// that still runs is told to stop.
class TransferItem : public QObject {
  Q_OBJECT

 public:
  using MakeWorker =
      std::function<std::shared_ptr<MThread>(std::shared_ptr<TransferUi>, transferStruct)>;

  /// `browser`: the window that asked. It is told of each entry that an upload brought, and its log
  /// gets the notes.
  TransferItem(const Site& connection, transferStruct description, MWindow* browser);
  ~TransferItem() override;

  /// Makes the worker and starts it. A worker that cannot start ends the transfer as failed.
  void Start(const MakeWorker& make);
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
  /// Where a download goes, raw: the file or folder where it is one, else the folder around them
  /// with a slash at its end.
  [[nodiscard]] std::string LocalPath() const;

  [[nodiscard]] QString ServerLine() const;
  /// What stands before the target path, and the path itself.
  [[nodiscard]] QString TargetTitle() const;
  [[nodiscard]] QString TargetPath() const;
  /// The file in hand.
  [[nodiscard]] QString FileName() const;
  /// "File: name" or, while it runs, the status text that stands in its place.
  [[nodiscard]] QString Label() const;
  /// What goes behind the label: how many files of a folder are done and, at the end, how many
  /// entries were left out.
  [[nodiscard]] QString CountText() const;
  [[nodiscard]] QString RateText() const;
  /// Bytes done and in all, in digits.
  [[nodiscard]] QString TotalText() const;
  /// What failed; empty while nothing has.
  [[nodiscard]] QString FailureText() const;
  /// The same in one line, with the name of the file.
  [[nodiscard]] QString FailureLine() const;
  /// Why it failed, or where it goes, and the beginning of the notes: for a tooltip, in lines.
  [[nodiscard]] QString Details() const;
  /// The whole row as one text.
  [[nodiscard]] QString Summary() const;
  /// 0 to 1.
  [[nodiscard]] double Fraction() const;

  [[nodiscard]] bool HasChanged() const { return link_->Progress().changed; }
  /// Takes in what the worker has said; true when there was anything new to show.
  [[nodiscard]] bool TakeChanged();

  /// From the link; `notes` are the new ones.
  void Report(TransferReport report, std::vector<std::string> notes);
  void MessageReceived(const Message& message);

 Q_SIGNALS:
  /// It does not run any more. Once.
  void Ended(corvane::TransferItem* item);
  /// The state has changed. All else is polled by TakeChanged.
  void Changed(corvane::TransferItem* item);
  /// The worker has said how it ended. Once, and the last of all.
  void Settled(corvane::TransferItem* item);

 private:
  void LogNotes() const;

  Site connection_;
  transferStruct description_;
  QPointer<MWindow> browser_;
  std::shared_ptr<TransferLink> link_;
  std::shared_ptr<MThread> worker_;
  TransferReport report_;
  std::vector<std::string> notes_;  // a line for each entry that failed or was left out
  bool settled_ = false;
};

}  // namespace corvane
