#pragma once

#include <QObject>
#include <QPointer>
#include <QString>
#include <memory>

#include "app/TransferLink.h"
#include "app/WorkerFactory.h"
#include "workers/transferStruct.h"

namespace corvane {

class MWindow;

/// One transfer of the list: what it is, how far it is, and the worker behind it. GUI thread. When
/// the row goes, a worker that still runs is told to stop.
class TransferItem : public QObject {
  Q_OBJECT

 public:
  /// `browser`: for uploads, the window that is told of each entry that arrived; else null.
  TransferItem(const Connection& connection, transferStruct description, MWindow* browser);
  ~TransferItem() override;

  /// Makes the worker and starts it. A worker that cannot start ends the row as failed.
  void Start(const WorkerFactory& factory);
  /// Ends a running transfer.
  void Cancel();
  /// The row is going: stops the worker and hears no more of it.
  void LetGo();

  [[nodiscard]] bool Running() const { return !report_.end.has_value(); }
  [[nodiscard]] bool Failed() const { return !Running() && *report_.end != TransferEnd::Finished; }
  [[nodiscard]] bool Finished() const { return !Running() && !Failed(); }
  [[nodiscard]] bool IsDownload() const { return description_.download; }

  [[nodiscard]] QString ServerLine() const;
  /// What stands before the target path, and the path itself.
  [[nodiscard]] QString TargetTitle() const;
  [[nodiscard]] QString TargetPath() const;
  /// "File: name", or the status text that stands in its place.
  [[nodiscard]] QString Label() const;
  [[nodiscard]] QString RateText() const;
  /// Bytes done and in all, in digits.
  [[nodiscard]] QString TotalText() const;
  /// What failed; empty while nothing has.
  [[nodiscard]] QString FailureText() const;
  /// The same in one line, with the name of the file.
  [[nodiscard]] QString FailureLine() const;
  /// The whole row as one text.
  [[nodiscard]] QString Summary() const;
  /// 0 to 1.
  [[nodiscard]] double Fraction() const;

  /// True once after the worker has moved on.
  [[nodiscard]] bool TakeChanged() { return link_->Progress().changed.exchange(false); }
  [[nodiscard]] std::shared_ptr<TransferLink> Link() const { return link_; }

  /// From the link.
  void Report(TransferReport report);
  void MessageReceived(const Message& message);

 Q_SIGNALS:
  /// The texts or the state have changed; progress alone does not count.
  void Changed(corvane::TransferItem* item);

 private:
  Connection connection_;
  transferStruct description_;
  QPointer<MWindow> browser_;
  std::shared_ptr<TransferLink> link_;
  std::shared_ptr<MThread> worker_;
  TransferReport report_;
};

}  // namespace corvane
