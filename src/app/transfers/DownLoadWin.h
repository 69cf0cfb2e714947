#pragma once

#include <QMainWindow>

#include "app/shared/TransferListener.h"
#include "app/transfers/TransferListView.h"
#include "kit/Message.h"

namespace corvane {

class StatusLine;
class TransferBar;
class TransferCommands;
struct TransferHost;

/// The transfer window: one row for everything that moves. Closing only hides it. GUI thread.
class DownLoadWin : public QMainWindow {
  Q_OBJECT

 public:
  DownLoadWin(TransferHost& app, const QRect& frame);
  ~DownLoadWin() override;

  /// Each request becomes a row with a connection of its own, and starts at once.
  void Add(transferStruct description, TransferListener listener);

  /// The commands of the table for the selected rows; '_RRC' reveals the first of them.
  void MessageReceived(const Message& message);
  void CancelAll();
  [[nodiscard]] int RunningCount() const { return list_->Items().RunningCount(); }

  [[nodiscard]] TransferListView& List() { return *list_; }
  [[nodiscard]] QSize sizeHint() const override { return {560, 400}; }

 private:
  /// Comes to the front without taking the keyboard.
  void ShowBeside();
  void MakeViews();
  void MakeMenus();
  void MenusBeginning();
  void ItemSettled(TransferItem* item);
  void ItemAsks(const std::shared_ptr<UserQuestion>& question);
  void CancelSelected();
  void RemoveSelected();
  void CrossSelected();
  void RetryFailed();
  void RemoveFinished();
  void RemoveAndSelectNext(const std::vector<int>& rows);
  void RemoveRows(const std::vector<int>& rows);
  void Act(int row, TransferAction action);
  void ActOnSelected(TransferAction action);
  void ShowState();
  void ShowPace();
  /// The rows, from the top, of which `chosen` holds.
  [[nodiscard]] std::vector<int> RowsWhere(bool (TransferItem::*chosen)() const) const;

  TransferHost& app_;
  TransferListView* list_;
  TransferBar* bar_;
  StatusLine* status_;
  TransferCommands* commands_ = nullptr;
};

}  // namespace corvane
