#include "app/transfers/DownLoadWin.h"

#include <QMenu>
#include <QMenuBar>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "app/shared/Alerts.h"
#include "app/shared/Frames.h"
#include "app/shared/Pace.h"
#include "app/shared/Rule.h"
#include "app/shared/SmallView.h"
#include "app/shared/StatusLine.h"
#include "app/shared/Style.h"
#include "app/shared/UserQuestions.h"
#include "app/shared/Windows.h"
#include "app/transfers/TransferBar.h"
#include "app/transfers/TransferCommands.h"
#include "app/transfers/TransferHost.h"
#include "settings/ProcessSettings.h"

namespace corvane {

DownLoadWin::DownLoadWin(TransferHost& app, const QRect& frame)
    : app_(app),
      list_(new TransferListView(this)),
      bar_(new TransferBar(this)),
      status_(new StatusLine(this)) {
  setMinimumHeight(200);
  setMaximumSize(4000, 4000);
  setGeometry(frame);
  MakeViews();
  MakeMenus();
  list_->setFocus();
  ShowState();
}

void DownLoadWin::MakeViews() {
  auto* views = new QWidget(this);
  auto* layout = new QVBoxLayout(views);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(0);
  layout->addWidget(bar_);
  layout->addWidget(new Rule(Qt::Horizontal, views));
  layout->addWidget(list_, 1);
  layout->addWidget(status_);
  setCentralWidget(views);
  const TransferModel* items = &list_->Items();
  for (const auto signal : {&QAbstractItemModel::rowsInserted, &QAbstractItemModel::rowsRemoved}) {
    connect(items, signal, this, &DownLoadWin::ShowState);
  }
  connect(items, &QAbstractItemModel::dataChanged, this, &DownLoadWin::ShowState);
  status_->Figure().SetSecondary(true);
  connect(list_, &TransferListView::Moved, this, &DownLoadWin::ShowPace);
  connect(list_, &TransferListView::Acted, this, &DownLoadWin::Act);
  connect(list_, &TransferListView::Requested, this,
          [this](std::uint32_t code) { MessageReceived(Message(code)); });
  connect(bar_, &TransferBar::RetryFailed, this, &DownLoadWin::RetryFailed);
  connect(bar_, &TransferBar::RemoveFinished, this, &DownLoadWin::RemoveFinished);
}

DownLoadWin::~DownLoadWin() {
  Frames::Keep(kTransferFrame, *this);
}

void DownLoadWin::MakeMenus() {
  menuBar()->setObjectName("TransferWinMenuBar");
  commands_ = new TransferCommands(
      *menuBar(), list_, [this](std::uint32_t code) { MessageReceived(Message(code)); },
      [this](QMenu& menu, int fixed) {
        AddWindowItems(menu, fixed, app_.BrowserWindows(), nullptr);
      });
  connect(commands_, &TransferCommands::MenusBeginning, this, &DownLoadWin::MenusBeginning);
}

void DownLoadWin::MenusBeginning() {
  const int last = list_->LastSelected();
  commands_->Update({.row = last < 0 ? nullptr : &list_->Items().At(last),
                     .anyFailed = !RowsWhere(&TransferItem::CanRetry).empty(),
                     .anyDone = !RowsWhere(&TransferItem::Finished).empty()});
}

void DownLoadWin::Add(transferStruct description, TransferListener listener) {
  TransferItem& item = list_->Items().Add(
      std::make_unique<TransferItem>(std::move(description), std::move(listener)));
  connect(&item, &TransferItem::Settled, this, &DownLoadWin::ItemSettled);
  connect(&item, &TransferItem::Asks, this, &DownLoadWin::ItemAsks);
  item.Start(app_.Workers().transfer);
  list_->ShowLastSoon();
  if (ProcessSettings::Get().showwindow) ShowBeside();
}

// A row that has something to say about entries that were left out stays.
void DownLoadWin::ItemSettled(TransferItem* item) {
  app_.TransferEnded(item->News());
  if (!item->Finished() || item->HasNotes() || !ProcessSettings::Get().removeItem) return;
  for (int row = 0; row < list_->Items().Count(); ++row) {
    if (&list_->Items().At(row) == item) return list_->Items().Remove(row);
  }
}

void DownLoadWin::ItemAsks(const std::shared_ptr<UserQuestion>& question) {
  if (isHidden()) ShowBeside();
  UserQuestions::Ask(this, question);
}

void DownLoadWin::MessageReceived(const Message& message) {
  switch (message.what) {
    case "CNCL"_what: CancelSelected(); break;
    case "REMI"_what: RemoveSelected(); break;
    case "CRSS"_what: CrossSelected(); break;
    case "RTRY"_what: ActOnSelected(TransferAction::Retry); break;
    case "RTAL"_what: RetryFailed(); break;
    case "RMFN"_what: RemoveFinished(); break;
    case "TGGL"_what: ActOnSelected(TransferAction::Toggle); break;
    case "OPEN"_what:
      if (const int row = list_->FirstSelected(); row >= 0) {
        Act(row, TransferRow::MainOf(list_->Items().At(row)));
      }
      break;
    case "_RRC"_what: Act(list_->FirstSelected(), TransferAction::Reveal); break;
    case "HELP"_what: app_.ShowManual(this); break;
    case "_QRQ"_what: close(); break;
    case "SHMN"_what: app_.PostMessage(message); break;
    default: break;
  }
}

void DownLoadWin::Act(int row, TransferAction action) {
  if (row < 0) return;
  TransferItem& item = list_->Items().At(row);
  switch (action) {
    case TransferAction::None: break;
    case TransferAction::Cancel: item.Cancel(); break;
    case TransferAction::Remove:
      if (!item.Running()) RemoveRows({row});
      break;
    case TransferAction::Reveal:
      if (item.IsDownload()) app_.RevealFile(this, item.LocalPath());
      break;
    case TransferAction::Retry: item.Retry(app_.Workers().transfer); break;
    case TransferAction::Toggle: item.SetOpen(!item.IsOpen()); break;
  }
}

void DownLoadWin::ActOnSelected(TransferAction action) {
  for (const int row : list_->SelectedRows()) Act(row, action);
}

// What the crosses of the selected rows do: those that run are cancelled and stay in the list.
void DownLoadWin::CrossSelected() {
  std::vector<int> ended;
  for (const int row : list_->SelectedRows()) {
    if (list_->Items().At(row).Running()) {
      list_->Items().At(row).Cancel();
    } else {
      ended.push_back(row);
    }
  }
  if (!ended.empty()) RemoveAndSelectNext(ended);
}

void DownLoadWin::RetryFailed() {
  for (const int row : RowsWhere(&TransferItem::CanRetry)) Act(row, TransferAction::Retry);
}

void DownLoadWin::RemoveFinished() {
  RemoveRows(RowsWhere(&TransferItem::Finished));
}

std::vector<int> DownLoadWin::RowsWhere(bool (TransferItem::*chosen)() const) const {
  std::vector<int> rows;
  for (int row = 0; row < list_->Items().Count(); ++row) {
    if ((list_->Items().At(row).*chosen)()) rows.push_back(row);
  }
  return rows;
}

void DownLoadWin::ShowState() {
  setWindowTitle(Style::InForce().TransferTitle(RunningCount()));
  bar_->Update(!RowsWhere(&TransferItem::CanRetry).empty(),
               !RowsWhere(&TransferItem::Finished).empty());
  QStringList parts;
  if (const int running = RunningCount(); running > 0) parts << tr("%n running", "", running);
  const auto failed = std::ranges::count_if(RowsWhere(&TransferItem::Failed), [this](int row) {
    return !list_->Items().At(row).WasCancelled();
  });
  if (failed > 0) parts << tr("%n failed", "", static_cast<int>(failed));
  status_->SetText(parts.isEmpty() ? tr("Nothing to do") : parts.join(QStringLiteral(", ")));
  ShowPace();
}

void DownLoadWin::ShowPace() {
  double rate = 0;
  std::int64_t left = 0;
  for (int row = 0; row < list_->Items().Count(); ++row) {
    const TransferItem& item = list_->Items().At(row);
    if (!item.Running()) continue;
    rate += item.Rate();
    left = left < 0 || item.Left() < 0 ? -1 : left + item.Left();
  }
  const QString pace = PaceText(rate, left);
  if (pace != status_->Figure().text()) status_->Figure().SetText(pace);
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
  if (refused) {
    RemoveRows(rows);
    Alerts::Show(this, {.title = tr("Warning!"),
                        .text = tr("You need to cancel the transfer to remove this item."),
                        .heading = tr("This transfer still runs."),
                        .advice = tr("Cancel it before you remove it from the list.")});
    return;
  }
  if (!rows.empty()) RemoveAndSelectNext(rows);
}

void DownLoadWin::RemoveAndSelectNext(const std::vector<int>& rows) {
  RemoveRows(rows);
  TransferModel& items = list_->Items();
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

// What the user types goes on to the window in which the transfer was begun.
void DownLoadWin::ShowBeside() {
  setAttribute(Qt::WA_ShowWithoutActivating);
  show();
  raise();
  setAttribute(Qt::WA_ShowWithoutActivating, false);
}

}  // namespace corvane
