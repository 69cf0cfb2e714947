#pragma once

#include <QObject>
#include <QTimer>
#include <functional>
#include <memory>
#include <set>
#include <vector>

#include "app/shared/TransferListener.h"
#include "app/transfers/TransferItem.h"
#include "queue/QueueStore.h"
#include "queue/TransferQueue.h"

namespace corvane {

class TransferModel;
struct TransferHost;

/// The rows of the transfer list and the queue that says when each of them runs: what the user
/// wants of a row goes to the queue, and the rows show how they stand there. GUI thread.
class QueuedTransfers : public QObject {
  Q_OBJECT

 public:
  /// `rows` has the order of the queue. `store`, which may be null, keeps what is not done. Alerts
  /// stand over `window`.
  QueuedTransfers(TransferHost& app, TransferModel& rows, std::shared_ptr<QueueStore> store,
                  QWidget* window);

  void Add(transferStruct description, TransferListener listener);
  /// Rows that were kept; they stand behind all others.
  void Restore(std::vector<QueueStore::Row> rows);

  /// For rows of these places, whichever it fits.
  void Pause(const std::vector<int>& rows);
  void Resume(const std::vector<int>& rows);
  void Cancel(const std::vector<int>& rows);
  /// Tries what failed once more.
  void Retry(const std::vector<int>& rows);
  void TryNow(const std::vector<int>& rows);
  /// The network is back: what waits is tried, and what runs has to show that it still does.
  void TryAllNow();
  /// Moves these rows, in their order, up (-1) or down (1); none where one of them cannot.
  void Move(const std::vector<int>& rows, int by);
  /// Takes rows that do not run off the list.
  void Remove(int first, int count);

  /// What the settings say of limits is in force from now on.
  void FollowSettings();
  /// Whether the rows outlast the program.
  [[nodiscard]] bool AreKept() const;
  /// What the user should know of the file that keeps the rows.
  [[nodiscard]] Text Trouble() const;

 Q_SIGNALS:
  /// It has ended for good, or for now until the user wants it otherwise.
  void Ended(corvane::TransferItem* item);
  void Asks(const std::shared_ptr<corvane::UserQuestion>& question);
  /// All rows show how they stand in the queue.
  void Followed();

 private:
  TransferItem& AddItem(std::unique_ptr<TransferItem> item);
  void Start(RowId id);
  void Stop(RowId id);
  void Settled(TransferItem* item, TransferEnd end);
  /// Has the queue start what may start, and the rows show how they stand.
  void Tick();
  void Follow();
  void Each(const std::vector<int>& rows, void (TransferQueue::*change)(RowId));
  [[nodiscard]] TransferItem* ItemOf(RowId id) const;
  /// Has `go` called for rows that are complete, at once or when the user has given what was not
  /// kept of them.
  void Complete(const std::vector<RowId>& rows, const std::function<void(RowId)>& go);
  void Completed(const Site& kept, const Site& whole);

  TransferHost& app_;
  TransferModel& rows_;
  const std::shared_ptr<QueueStore> store_;
  QWidget* const window_;
  TransferQueue queue_;
  QTimer timer_;
  RowId next_ = 1;
  bool completing_ = false;  // the user is asked for what was not kept
  std::set<RowId> bare_;     // restored, and without what is not kept of a site
};

}  // namespace corvane
