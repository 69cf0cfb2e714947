#pragma once

#include <QMainWindow>

#include "app/transfers/TransferListView.h"
#include "app/transfers/TransferRequest.h"
#include "kit/Message.h"

class QAction;

namespace corvane {

class TambleApp;

/// The transfer window: one row for everything that moves. Closing only hides it. GUI thread.
class DownLoadWin : public QMainWindow {
  Q_OBJECT

 public:
  DownLoadWin(TambleApp& app, const QRect& frame);
  ~DownLoadWin() override;

  /// Each request becomes a row with a connection of its own, and starts at once.
  void AddDownload(DownloadRequest request);
  void AddUpload(UploadRequest request);

  /// 'CNCL' and 'REMI' for the selected rows; '_RRC' reveals a local path ("refs").
  void MessageReceived(const Message& message);
  void CancelAll();
  [[nodiscard]] int RunningCount() const { return list_->Items().RunningCount(); }

  [[nodiscard]] TransferListView& List() { return *list_; }

 private:
  void MakeMenus();
  void MenusBeginning();
  void Add(const Site& connection, transferStruct description, MWindow* browser);
  void ItemSettled(TransferItem* item);
  void CancelSelected();
  void RemoveSelected();
  void RemoveRows(const std::vector<int>& rows);

  TambleApp& app_;
  TransferListView* list_;
  QAction* cancel_ = nullptr;
  QAction* remove_ = nullptr;
};

}  // namespace corvane
