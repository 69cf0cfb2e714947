#include "app/transfers/DownLoadWin.h"

#include <QAction>
#include <QMenu>
#include <QMenuBar>
#include <QShortcut>
#include <algorithm>
#include <utility>

#include "app/browser/MWindow.h"
#include "app/desktop/Reveal.h"
#include "app/program/TambleApp.h"
#include "app/shared/Alerts.h"
#include "app/shared/Frames.h"
#include "app/shared/Windows.h"
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
}

DownLoadWin::~DownLoadWin() {
  Frames::Keep(kTransferFrame, *this);
}

void DownLoadWin::MakeMenus() {
  menuBar()->setObjectName("TransferWinMenuBar");
  QMenu* file = menuBar()->addMenu(tr("&File"));
  // The items follow the last selected row, the keys work for every selection: of several rows the
  // last one need not run for others to be cancelled.
  const auto add = [&](const QString& text, const QKeySequence& key, auto command) {
    new QShortcut(key, this, this, command);
    QAction* action =
        file->addAction(text + '\t' + key.toString(QKeySequence::NativeText), this, command);
    action->setEnabled(false);
    return action;
  };
  cancel_ = add(tr("&Cancel Transfer"), QKeySequence("Ctrl+."), &DownLoadWin::CancelSelected);
  remove_ = add(tr("&Remove Item"), QKeySequence(Qt::Key_Backspace), &DownLoadWin::RemoveSelected);
  QMenu* windows = menuBar()->addMenu(tr("&Windows"));
  windows->addAction(tr("&Control Window"), QKeySequence("Ctrl+N"), this,
                     [this] { app_.PostMessage(Message("SHMN"_what)); });
  connect(windows, &QMenu::aboutToShow, this,
          [this, windows] { AddWindowItems(*windows, 1, app_.WindowList(), nullptr); });
  connect(file, &QMenu::aboutToShow, this, &DownLoadWin::MenusBeginning);
  AddCloseKey(this);
}

// Without a selection the items stay as they were.
void DownLoadWin::MenusBeginning() {
  const int last = list_->LastSelected();
  if (last < 0) return;
  const bool running = list_->Items().At(last).Running();
  cancel_->setEnabled(running);
  remove_->setEnabled(!running);
}

void DownLoadWin::AddDownload(DownloadRequest request) {
  const Site connection = request.connection;
  MWindow* window = request.window;
  Add(connection, Description(std::move(request)), window);
}

void DownLoadWin::AddUpload(UploadRequest request) {
  const Site connection = request.connection;
  MWindow* window = request.window;
  Add(connection, Description(std::move(request)), window);
}

void DownLoadWin::Add(const Site& connection, transferStruct description, MWindow* browser) {
  TransferItem& item = list_->Items().Add(
      std::make_unique<TransferItem>(connection, std::move(description), browser));
  connect(&item, &TransferItem::Settled, this, &DownLoadWin::ItemSettled);
  item.Start([&](std::shared_ptr<TransferUi> row, transferStruct what) {
    return app_.Workers().transfer(connection, std::move(row), std::move(what));
  });
  list_->ShowLastSoon();
  if (ProcessSettings::Get().showwindow) BringForward(this);
}

// A row that has something to say about entries that were left out stays.
void DownLoadWin::ItemSettled(TransferItem* item) {
  app_.Notifications().Ended(*item);
  if (!item->Finished() || item->HasNotes() || !ProcessSettings::Get().removeItem) return;
  for (int row = 0; row < list_->Items().Count(); ++row) {
    if (&list_->Items().At(row) == item) return list_->Items().Remove(row);
  }
}

void DownLoadWin::MessageReceived(const Message& message) {
  switch (message.what) {
    case "CNCL"_what: CancelSelected(); break;
    case "REMI"_what: RemoveSelected(); break;
    case "_RRC"_what: Reveal::Show(this, message.FindString("refs").value_or("")); break;
    default: break;
  }
}

void DownLoadWin::CancelSelected() {
  for (const int row : list_->SelectedRows()) list_->Items().At(row).Cancel();
  list_->clearSelection();
}

// Removes from the top down to the first row that still runs.
void DownLoadWin::RemoveSelected() {
  TransferModel& items = list_->Items();
  std::vector<int> rows = list_->SelectedRows();
  const auto running = std::ranges::find_if(rows, [&](int row) { return items.At(row).Running(); });
  const bool refused = running != rows.end();
  rows.erase(running, rows.end());
  RemoveRows(rows);
  if (refused) {
    Alerts::Show(this, {.title = tr("Warning!"),
                        .text = tr("You need to cancel the transfer to remove this item.")});
    return;
  }
  if (rows.empty()) return;
  const int next = rows.back() + 1 - static_cast<int>(rows.size());
  if (next < items.Count()) {
    list_->selectionModel()->setCurrentIndex(items.index(next),
                                             QItemSelectionModel::ClearAndSelect);
  }
}

/// Removes these rows, given in their order, run by run from the last.
void DownLoadWin::RemoveRows(const std::vector<int>& rows) {
  // The view would select the neighbour of a current row that goes.
  list_->selectionModel()->setCurrentIndex({}, QItemSelectionModel::NoUpdate);
  for (auto end = rows.end(); end != rows.begin();) {
    auto begin = end - 1;
    while (begin != rows.begin() && *(begin - 1) + 1 == *begin) --begin;
    list_->Items().Remove(*begin, static_cast<int>(end - begin));
    end = begin;
  }
}

void DownLoadWin::CancelAll() {
  for (int row = 0; row < list_->Items().Count(); ++row) list_->Items().At(row).Cancel();
}

}  // namespace corvane
