#include "app/transfers/DownLoadWin.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMenu>
#include <QMenuBar>
#include <QPointer>
#include <QTimer>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "app/shared/Alerts.h"
#include "app/shared/Frames.h"
#include "app/shared/OpenMessage.h"
#include "app/shared/Pace.h"
#include "app/shared/Rule.h"
#include "app/shared/Shown.h"
#include "app/shared/SmallView.h"
#include "app/shared/StatusLine.h"
#include "app/shared/Strip.h"
#include "app/shared/Style.h"
#include "app/shared/UserQuestions.h"
#include "app/shared/Windows.h"
#include "app/transfers/QueuedTransfers.h"
#include "app/transfers/TransferCommands.h"
#include "app/transfers/TransferHost.h"
#include "queue/TransferQueue.h"
#include "settings/ProcessSettings.h"
#include "sites/SiteOf.h"

namespace corvane {
namespace {

bool IsDone(RowState state) {
  return state == RowState::Done;
}

bool IsGoing(RowState state) {
  return TransferQueue::CanPause(state);
}

}  // namespace

DownLoadWin::DownLoadWin(TransferHost& app, const QRect& frame, std::shared_ptr<QueueStore> store)
    : app_(app),
      list_(new TransferListView(this)),
      bar_(new TransferBar(this)),
      status_(new StatusLine(this)),
      queued_(new QueuedTransfers(app, list_->Items(), std::move(store), this)) {
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
  views_ = new QVBoxLayout(views);
  views_->setContentsMargins(0, 0, 0, 0);
  views_->setSpacing(0);
  views_->addWidget(bar_);
  views_->addWidget(new Rule(Qt::Horizontal, views));
  views_->addWidget(list_, 1);
  views_->addWidget(status_);
  setCentralWidget(views);
  status_->Figure().SetSecondary(true);
  connect(list_, &TransferListView::Moved, this, &DownLoadWin::ShowPace);
  connect(list_, &TransferListView::Acted, this, &DownLoadWin::Act);
  connect(list_, &TransferListView::Requested, this,
          [this](std::uint32_t code) { MessageReceived(Message(code)); });
  connect(queued_, &QueuedTransfers::Followed, this, &DownLoadWin::ShowState);
  connect(queued_, &QueuedTransfers::Ended, this, &DownLoadWin::ItemEnded);
  connect(queued_, &QueuedTransfers::Asks, this, &DownLoadWin::ItemAsks);
  connect(bar_, &TransferBar::PauseAll, this, [this] { ActOnAll("PALL"_what); });
  connect(bar_, &TransferBar::ResumeAll, this, [this] { ActOnAll("RALL"_what); });
  connect(bar_, &TransferBar::RetryFailed, this, [this] { ActOnAll("RTAL"_what); });
  connect(bar_, &TransferBar::RemoveFinished, this, [this] { ActOnAll("RMFN"_what); });
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
                     .first = list_->FirstSelected() == 0,
                     .last = last == list_->Items().Count() - 1,
                     .any = Choices()});
}

void DownLoadWin::Add(transferStruct description, TransferListener listener) {
  const bool quiet = listener.quiet;
  queued_->Add(std::move(description), std::move(listener));
  list_->ShowLastSoon();
  if (!quiet && ProcessSettings::Get().showwindow) ShowBeside();
}

void DownLoadWin::Restore(std::vector<QueueStore::Row> rows) {
  const bool any = !rows.empty();
  queued_->Restore(std::move(rows));
  if (any) ShowBeside();
}

// A row that has something to say about entries that were left out stays.
void DownLoadWin::ItemEnded(TransferItem* item) {
  const bool quiet = item->IsQuiet();
  if (!quiet) app_.TransferEnded(item->News());
  const bool stays = !item->Finished() || item->HasNotes() || !ProcessSettings::Get().removeItem;
  if (!quiet && stays) return;
  if (const int row = list_->Items().RowOf(item->Id()); row >= 0) queued_->Remove(row, 1);
}

void DownLoadWin::ItemAsks(const std::shared_ptr<UserQuestion>& question) {
  if (isHidden()) ShowBeside();
  UserQuestions::Ask(this, question);
}

void DownLoadWin::MessageReceived(const Message& message) {
  const std::vector<int> rows = list_->SelectedRows();
  switch (message.what) {
    case "CNCL"_what: CancelSelected(); break;
    case "REMI"_what: RemoveSelected(); break;
    case "CRSS"_what: CrossSelected(); break;
    case "PAUS"_what: queued_->Pause(rows); break;
    case "RSUM"_what: queued_->Resume(rows); break;
    case "RTRY"_what: queued_->Retry(rows); break;
    case "TRYN"_what: queued_->TryNow(rows); break;
    case "MVUP"_what: queued_->Move(rows, -1); break;
    case "MVDN"_what: queued_->Move(rows, 1); break;
    case "TGGL"_what: ToggleSelected(); break;
    case "OPEN"_what:
      if (!rows.empty()) Act(rows.front(), TransferRow::MainOf(list_->Items().At(rows.front())));
      break;
    case "OPFL"_what: OpenSelected(); break;
    case "CPYA"_what: CopyAddresses(); break;
    case "_RRC"_what: Act(list_->FirstSelected(), TransferAction::Reveal); break;
    case "DIAG"_what: Diagnose(); break;
    case "HELP"_what: app_.ShowManual(this); break;
    case "_QRQ"_what: close(); break;
    case "SHMN"_what: app_.PostMessage(message); break;
    default: ActOnAll(message.what); break;
  }
}

void DownLoadWin::ActOnAll(std::uint32_t code) {
  switch (code) {
    case "PALL"_what: queued_->Pause(RowsWhere(IsGoing)); break;
    case "RALL"_what: queued_->Resume(RowsWhere(TransferQueue::CanResume)); break;
    case "RTAL"_what: queued_->Retry(RowsWhere(TransferQueue::CanRetry)); break;
    case "RMFN"_what: RemoveRows(RowsWhere(IsDone)); break;
    default: break;
  }
}

void DownLoadWin::Act(int row, TransferAction action) {
  if (row < 0) return;
  TransferItem& item = list_->Items().At(row);
  switch (action) {
    case TransferAction::None: break;
    case TransferAction::Cancel: queued_->Cancel({row}); break;
    case TransferAction::Remove:
      if (item.HasEnded()) RemoveRows({row});
      break;
    case TransferAction::Reveal:
      if (item.IsDownload()) app_.RevealFile(this, item.LocalPath());
      break;
    case TransferAction::Pause: queued_->Pause({row}); break;
    case TransferAction::Resume: queued_->Resume({row}); break;
    case TransferAction::Retry: queued_->Retry({row}); break;
    case TransferAction::TryNow: queued_->TryNow({row}); break;
    case TransferAction::Toggle: item.SetOpen(!item.IsOpen()); break;
  }
}

void DownLoadWin::ToggleSelected() {
  for (const int row : list_->SelectedRows()) Act(row, TransferAction::Toggle);
}

void DownLoadWin::OpenSelected() {
  for (const int row : list_->SelectedRows()) {
    const TransferItem& item = list_->Items().At(row);
    const bool opens = item.IsDownload() && item.Finished() && !item.IsSeveral();
    if (opens) app_.OpenFile(this, item.LocalPath());
  }
}

// What helps is tried in a browser window.
void DownLoadWin::Diagnose() {
  const int row = list_->FirstSelected();
  if (row < 0) return;
  const Site site = list_->Items().At(row).Description().site;
  app_.CompleteSite(this, site, [self = QPointer(this)](const std::optional<Site>& whole) {
    if (self.isNull() || !whole.has_value()) return;
    self->app_.Diagnose(self, *whole, [self](const Site& mended) {
      if (!self.isNull()) self->app_.PostMessage(OpenMessage(mended));
    });
  });
}

void DownLoadWin::CopyAddresses() const {
  QStringList addresses;
  for (const int row : list_->SelectedRows()) {
    const TransferItem& item = list_->Items().At(row);
    addresses << QString::fromStdString(
        UrlOf(item.Description().site, item.RemotePath()).Written());
  }
  if (!addresses.isEmpty()) QGuiApplication::clipboard()->setText(addresses.join('\n'));
}

// What the crosses of the selected rows do: those that have not ended are cancelled and stay.
void DownLoadWin::CrossSelected() {
  std::vector<int> ended;
  std::vector<int> going;
  for (const int row : list_->SelectedRows()) {
    (list_->Items().At(row).HasEnded() ? ended : going).push_back(row);
  }
  queued_->Cancel(going);
  if (!ended.empty()) RemoveAndSelectNext(ended);
}

std::vector<int> DownLoadWin::RowsWhere(bool (*chosen)(RowState)) const {
  std::vector<int> rows;
  for (int row = 0; row < list_->Items().Count(); ++row) {
    if (chosen(list_->Items().At(row).Stands())) rows.push_back(row);
  }
  return rows;
}

TransferChoices DownLoadWin::Choices() const {
  const TransferModel& items = list_->Items();
  return {.anyToPause = GoingCount() > 0,
          .anyPaused = items.CountOf(RowState::Paused) > 0,
          .anyFailed = items.CountOf(RowState::Failed) + items.CountOf(RowState::Cancelled) > 0,
          .anyDone = items.CountOf(RowState::Done) > 0};
}

int DownLoadWin::GoingCount() const {
  const TransferModel& items = list_->Items();
  return items.CountOf(RowState::Running) + items.CountOf(RowState::Waiting) +
         items.CountOf(RowState::Again);
}

bool DownLoadWin::KeepsRows() const {
  return queued_->AreKept();
}

void DownLoadWin::ShowState() {
  const TransferModel& items = list_->Items();
  setWindowTitle(Style::InForce().TransferTitle(items.RunningCount()));
  bar_->Update(Choices());
  QStringList parts;
  if (const int running = items.RunningCount(); running > 0) parts << tr("%n running", "", running);
  const int waiting = items.CountOf(RowState::Waiting) + items.CountOf(RowState::Again);
  if (waiting > 0) parts << tr("%n waiting", "", waiting);
  if (const int paused = items.CountOf(RowState::Paused); paused > 0) {
    parts << tr("%n paused", "", paused);
  }
  if (const int failed = items.CountOf(RowState::Failed); failed > 0) {
    parts << tr("%n failed", "", failed);
  }
  status_->SetText(parts.isEmpty() ? tr("Nothing to do") : parts.join(QStringLiteral(", ")));
  ShowPace();
  ShowTrouble();
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

void DownLoadWin::ShowTrouble() {
  if (trouble_ != nullptr) return;
  const Text trouble = queued_->Trouble();
  if (trouble.IsEmpty()) return;
  trouble_ = new Strip("triangle", Tone::Caution, this);
  trouble_->Set(Shown(trouble), {});
  views_->insertWidget(2, trouble_);
  QTimer::singleShot(0, this, &DownLoadWin::ShowBeside);
}

void DownLoadWin::CancelSelected() {
  queued_->Cancel(list_->SelectedRows());
  list_->clearSelection();
}

// Removes from the top down to the first row that has not ended.
void DownLoadWin::RemoveSelected() {
  TransferModel& items = list_->Items();
  std::vector<int> rows = list_->SelectedRows();
  const auto going = std::ranges::find_if(rows, [&](int row) { return !items.At(row).HasEnded(); });
  const bool refused = going != rows.end();
  rows.erase(going, rows.end());
  if (refused) {
    RemoveRows(rows);
    Alerts::Show(this, {.title = tr("Warning!"),
                        .text = tr("You need to cancel the transfer to remove this item."),
                        .heading = tr("This transfer has not ended."),
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
    queued_->Remove(*begin, static_cast<int>(end - begin));
    end = begin;
  }
}

void DownLoadWin::StopAll() {
  queued_->Pause(RowsWhere(IsGoing));
}

void DownLoadWin::CancelThoseOf(const std::string& folder) {
  TransferModel& items = list_->Items();
  for (int row = items.Count() - 1; row >= 0; --row) {
    const TransferItem& item = items.At(row);
    if (item.Description().targetFolder != folder) continue;
    const RowId id = item.Id();
    queued_->Cancel({row});
    // Its worker, where it runs, ends by itself.
    const int now = items.RowOf(id);
    if (now >= 0 && items.At(now).IsQuiet() && items.At(now).HasEnded()) queued_->Remove(now, 1);
  }
}

void DownLoadWin::TryAllNow() {
  queued_->TryAllNow();
}

void DownLoadWin::FollowSettings() {
  queued_->FollowSettings();
}

// What the user types goes on to the window in which the transfer was begun.
void DownLoadWin::ShowBeside() {
  setAttribute(Qt::WA_ShowWithoutActivating);
  show();
  raise();
  setAttribute(Qt::WA_ShowWithoutActivating, false);
}

}  // namespace corvane
