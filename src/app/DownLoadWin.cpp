#include "app/DownLoadWin.h"

#include <QAction>
#include <QMenu>
#include <QMenuBar>
#include <QShortcut>
#include <algorithm>
#include <utility>

#include "app/Alerts.h"
#include "app/Frames.h"
#include "app/MWindow.h"
#include "app/TambleApp.h"
#include "app/Windows.h"
#include "settings/ProcessSettings.h"

namespace corvane {

DownLoadWin::DownLoadWin(TambleApp& app, const QRect& frame)
    : app_(app), list_(new TransferListView(this)) {
  setWindowTitle(tr("Transfer List"));
  setMinimumSize(270, 200);
  setMaximumSize(4000, 4000);
  setGeometry(frame);
  setCentralWidget(list_);
  MakeMenus();
  connect(list_, &TransferListView::Requested, this, &DownLoadWin::MessageReceived);
  connect(list_, &TransferListView::SelectionChanged, this, &DownLoadWin::MenusBeginning);
  MenusBeginning();
}

DownLoadWin::~DownLoadWin() {
  Frames::Keep(kTransferFrame, *this);
  list_->disconnect(this);  // the base class takes it apart
}

void DownLoadWin::MakeMenus() {
  menuBar()->setObjectName("TransferWinMenuBar");
  QMenu* file = menuBar()->addMenu(tr("&File"));
  cancel_ = file->addAction(tr("&Cancel Transfer"), QKeySequence("Ctrl+."), this,
                            &DownLoadWin::CancelSelected);
  // The key works on a running transfer too, and then says why it does not remove it.
  const QKeySequence backspace(Qt::Key_Backspace);
  remove_ = file->addAction(tr("&Remove Item") + '\t' + backspace.toString(), this,
                            &DownLoadWin::RemoveSelected);
  new QShortcut(backspace, this, this, &DownLoadWin::RemoveSelected);
  QMenu* windows = menuBar()->addMenu(tr("&Windows"));
  windows->addAction(tr("&Control Window"), QKeySequence("Ctrl+N"), this,
                     [this] { app_.PostMessage(Message("SHMN"_what)); });
  connect(windows, &QMenu::aboutToShow, this,
          [this, windows] { AddWindowItems(*windows, 1, app_.WindowList(), nullptr); });
  connect(file, &QMenu::aboutToShow, this, &DownLoadWin::MenusBeginning);
  AddCloseKey(this);
}

void DownLoadWin::MenusBeginning() {
  const std::vector<int> rows = list_->SelectedRows();
  const bool running = !rows.empty() && list_->Items().At(rows.back()).Running();
  cancel_->setEnabled(running);
  remove_->setEnabled(!rows.empty() && !running);
}

void DownLoadWin::AddDownload(DownloadRequest request) {
  transferStruct description;
  description.remoteDirectory = std::move(request.remoteDirectory);
  description.targetFolder = std::move(request.where);
  description.size = request.size;
  description.overwrite = request.overwrite;
  description.items = std::move(request.items);
  Add(request.connection, std::move(description), nullptr);
}

void DownLoadWin::AddUpload(UploadRequest request) {
  transferStruct description;
  description.remoteDirectory = std::move(request.remoteDirectory);
  description.download = false;
  description.localItems = std::move(request.localItems);
  Add(request.connection, std::move(description), request.window);
}

void DownLoadWin::Add(const Connection& connection, transferStruct description, MWindow* browser) {
  TransferItem& item = list_->Items().Add(
      std::make_unique<TransferItem>(connection, std::move(description), browser));
  connect(&item, &TransferItem::Changed, this, &DownLoadWin::ItemChanged);
  item.Start(app_.Workers());
  list_->scrollToBottom();
  if (ProcessSettings::Get().showwindow) BringForward(this);
}

void DownLoadWin::ItemChanged(TransferItem* item) {
  if (item->Finished() && ProcessSettings::Get().removeItem) {
    for (int row = 0; row < list_->Items().Count(); ++row) {
      if (&list_->Items().At(row) == item) {
        list_->Items().Remove(row);
        break;
      }
    }
  }
  MenusBeginning();
}

void DownLoadWin::MessageReceived(const Message& message) {
  if (message.what == "CNCL"_what) CancelSelected();
  if (message.what == "REMI"_what) RemoveSelected();
}

void DownLoadWin::CancelSelected() {
  for (const int row : list_->SelectedRows()) list_->Items().At(row).Cancel();
  list_->clearSelection();
}

void DownLoadWin::RemoveSelected() {
  TransferModel& items = list_->Items();
  int removed = -1;
  for (std::vector<int> rows = list_->SelectedRows(); !rows.empty(); rows = list_->SelectedRows()) {
    if (items.At(rows.front()).Running()) {
      Alerts::Show(this, {.title = tr("Warning!"),
                          .text = tr("You need to cancel the transfer to remove this item.")});
      return;
    }
    removed = rows.front();
    // The view would select a neighbour by itself, and the loop would eat that too.
    list_->selectionModel()->select(items.index(removed), QItemSelectionModel::Deselect);
    items.Remove(removed);
  }
  if (removed >= 0 && removed < items.Count()) {
    list_->selectionModel()->setCurrentIndex(items.index(removed),
                                             QItemSelectionModel::ClearAndSelect);
  }
}

void DownLoadWin::CancelAll() {
  for (int row = 0; row < list_->Items().Count(); ++row) list_->Items().At(row).Cancel();
}

}  // namespace corvane
