#pragma once

#include <QMainWindow>
#include <memory>
#include <vector>

#include "app/shared/TransferListener.h"
#include "app/transfers/TransferBar.h"
#include "app/transfers/TransferListView.h"
#include "kit/Message.h"
#include "queue/QueueStore.h"

class QVBoxLayout;

namespace corvane {

class QueuedTransfers;
class StatusLine;
class Strip;
class TransferCommands;
struct TransferHost;

/// The transfer window: one row for everything that moves, has moved or waits for its turn. Closing
/// only hides it. GUI thread.
class DownLoadWin : public QMainWindow {
  Q_OBJECT

 public:
  /// `store`, which may be null, keeps the rows that are not done.
  DownLoadWin(TransferHost& app, const QRect& frame, std::shared_ptr<QueueStore> store = {});
  ~DownLoadWin() override;

  /// Each request becomes a row with connections of its own, and starts when it has its turn.
  void Add(transferStruct description, TransferListener listener);
  /// Rows that were kept: shows the window without the keyboard where there are any.
  void Restore(std::vector<QueueStore::Row> rows);

  /// The commands of the table for the selected rows; '_RRC' reveals the first of them.
  void MessageReceived(const Message& message);
  /// The program ends: stops what runs. Rows that are kept are gone on with after the next start.
  void StopAll();
  /// Ends the transfers from or to that local folder, raw bytes.
  void CancelThoseOf(const std::string& folder);
  /// The network is back, or the machine.
  void TryAllNow();
  /// The preferences were saved.
  void FollowSettings();
  /// How many transfers run or wait for their turn.
  [[nodiscard]] int GoingCount() const;
  /// Whether what is not done outlasts the program.
  [[nodiscard]] bool KeepsRows() const;

  [[nodiscard]] TransferListView& List() { return *list_; }
  [[nodiscard]] QSize sizeHint() const override { return {560, 400}; }

 private:
  /// Comes to the front without taking the keyboard.
  void ShowBeside();
  void MakeViews();
  void MakeMenus();
  void MenusBeginning();
  void ItemEnded(TransferItem* item);
  void ItemAsks(const std::shared_ptr<UserQuestion>& question);
  void CancelSelected();
  void RemoveSelected();
  void CrossSelected();
  void RemoveAndSelectNext(const std::vector<int>& rows);
  void RemoveRows(const std::vector<int>& rows);
  void Act(int row, TransferAction action);
  void ActOnAll(std::uint32_t code);
  void ToggleSelected();
  void OpenSelected();
  void CopyAddresses() const;
  void Diagnose();
  void ShowState();
  void ShowPace();
  void ShowTrouble();
  [[nodiscard]] TransferChoices Choices() const;
  /// The rows, from the top, of whose state `chosen` holds.
  [[nodiscard]] std::vector<int> RowsWhere(bool (*chosen)(RowState)) const;

  TransferHost& app_;
  TransferListView* list_;
  TransferBar* bar_;
  StatusLine* status_;
  Strip* trouble_ = nullptr;
  QVBoxLayout* views_ = nullptr;
  QueuedTransfers* queued_;
  TransferCommands* commands_ = nullptr;
};

}  // namespace corvane
