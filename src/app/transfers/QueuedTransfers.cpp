#include "app/transfers/QueuedTransfers.h"

#include <QPointer>
#include <algorithm>
#include <utility>

#include "app/transfers/TransferHost.h"
#include "app/transfers/TransferModel.h"
#include "settings/ProcessSettings.h"

namespace corvane {
namespace {

TransferQueue::Limits LimitsOf(const SettingsValues& settings) {
  return {.rows = settings.transfersAtOnce,
          .rowsPerServer = settings.transfersPerServer,
          .tries = settings.retries,
          .first = std::chrono::seconds(settings.firstRetry)};
}

/// The jobs of a kept row that were chosen.
std::vector<TransferJob> ChosenOf(const std::vector<JobRecord>& records) {
  std::vector<TransferJob> chosen;
  for (const JobRecord& record : records)
    if (record.parent == kNoJob) chosen.push_back(record.job);
  return chosen;
}

}  // namespace

QueuedTransfers::QueuedTransfers(TransferHost& app, TransferModel& rows,
                                 std::shared_ptr<QueueStore> store, QWidget* window)
    : QObject(window),
      app_(app),
      rows_(rows),
      store_(std::move(store)),
      window_(window),
      queue_({[this](RowId id) { Start(id); }, [this](RowId id) { Stop(id); }}, store_),
      next_(store_ ? store_->NextId() : 1) {
  timer_.setSingleShot(true);
  connect(&timer_, &QTimer::timeout, this, &QueuedTransfers::Tick);
}

void QueuedTransfers::Add(transferStruct description, TransferListener listener) {
  const RowId id = next_++;
  queue_.Add(id, description);
  auto board = std::make_shared<JobBoard>(description, id, store_);
  AddItem(std::make_unique<TransferItem>(std::move(description), std::move(listener), id,
                                         std::move(board)));
  Tick();
}

void QueuedTransfers::Restore(std::vector<QueueStore::Row> rows) {
  for (QueueStore::Row& row : rows) {
    next_ = std::max(next_, row.id + 1);
    queue_.Restore(row.id, row.what, row.state);
    row.what.jobs = ChosenOf(row.jobs);
    auto board = std::make_shared<JobBoard>(row.what, std::move(row.jobs), row.id, store_);
    AddItem(std::make_unique<TransferItem>(std::move(row.what), TransferListener(), row.id,
                                           std::move(board)));
    bare_.insert(row.id);
  }
  Tick();
}

TransferItem& QueuedTransfers::AddItem(std::unique_ptr<TransferItem> item) {
  TransferItem& added = rows_.Add(std::move(item));
  connect(&added, &TransferItem::Settled, this, &QueuedTransfers::Settled);
  connect(&added, &TransferItem::Asks, this, &QueuedTransfers::Asks);
  return added;
}

TransferItem* QueuedTransfers::ItemOf(RowId id) const {
  const int row = rows_.RowOf(id);
  return row < 0 ? nullptr : &rows_.At(row);
}

void QueuedTransfers::Start(RowId id) {
  if (TransferItem* item = ItemOf(id)) item->Start(app_.Workers().transfer);
}

void QueuedTransfers::Stop(RowId id) {
  if (TransferItem* item = ItemOf(id)) item->Stop();
}

void QueuedTransfers::Settled(TransferItem* item, TransferEnd end) {
  queue_.Ended(item->Id(), end, item->Progress().advanced, TransferQueue::Clock::now());
  const QPointer<TransferItem> guard(item);
  Tick();
  if (!guard.isNull() && item->HasEnded()) Q_EMIT Ended(item);
}

void QueuedTransfers::Tick() {
  queue_.SetLimits(LimitsOf(ProcessSettings::Get()));
  const auto next = queue_.Tick(TransferQueue::Clock::now());
  Follow();
  if (!next) return timer_.stop();
  timer_.start(std::chrono::ceil<std::chrono::milliseconds>(*next - TransferQueue::Clock::now()));
}

void QueuedTransfers::Follow() {
  int place = 0;
  int waiting = 0;
  for (const TransferQueue::Row& row : queue_.Rows()) {
    // Where both have the same rows the places are the same.
    const bool same = place < rows_.rowCount() && rows_.At(place).Id() == row.id;
    TransferItem* item = same ? &rows_.At(place) : ItemOf(row.id);
    ++place;
    RowStanding standing{.state = row.state};
    if (row.state == RowState::Waiting) standing.before = waiting++;
    if (item == nullptr) continue;
    if (row.state == RowState::Again) {
      standing.tries = row.tries;
      standing.most = queue_.InForce().tries;
      standing.again = row.again;
    }
    item->SetStanding(standing);
  }
  Q_EMIT Followed();
}

void QueuedTransfers::Each(const std::vector<int>& rows, void (TransferQueue::*change)(RowId)) {
  for (const int row : rows) (queue_.*change)(rows_.At(row).Id());
  Tick();
}

void QueuedTransfers::Pause(const std::vector<int>& rows) {
  Each(rows, &TransferQueue::Pause);
}

void QueuedTransfers::Cancel(const std::vector<int>& rows) {
  Each(rows, &TransferQueue::Cancel);
}

void QueuedTransfers::TryNow(const std::vector<int>& rows) {
  Each(rows, &TransferQueue::TryNow);
}

void QueuedTransfers::TryAllNow() {
  for (const TransferQueue::Row& row : queue_.Rows())
    if (TransferItem* item = ItemOf(row.id)) item->CheckConnections();
  queue_.TryAllNow();
  Tick();
}

void QueuedTransfers::Resume(const std::vector<int>& rows) {
  std::vector<RowId> ids;
  for (const int row : rows)
    if (TransferQueue::CanResume(rows_.At(row).Stands())) ids.push_back(rows_.At(row).Id());
  Complete(ids, [this](RowId id) { queue_.Resume(id); });
}

void QueuedTransfers::Retry(const std::vector<int>& rows) {
  std::vector<RowId> ids;
  for (const int row : rows)
    if (TransferQueue::CanRetry(rows_.At(row).Stands())) ids.push_back(rows_.At(row).Id());
  Complete(ids, [this](RowId id) {
    if (TransferItem* item = ItemOf(id)) item->TakeUpFailed();
    queue_.Retry(id);
  });
}

// One site after the other, each for all of its rows: nobody is asked twice for one password.
void QueuedTransfers::Complete(const std::vector<RowId>& rows,
                               const std::function<void(RowId)>& go) {
  std::vector<RowId> bare;
  for (const RowId id : rows) {
    if (bare_.contains(id)) {
      bare.push_back(id);
    } else {
      go(id);
    }
  }
  Tick();
  const auto first = std::ranges::find_if(bare, [this](RowId id) { return ItemOf(id) != nullptr; });
  if (first == bare.end() || std::exchange(completing_, true)) return;
  const Site site = ItemOf(*first)->Description().site;
  app_.CompleteSite(window_, site, [this, site, bare, go](const std::optional<Site>& whole) {
    completing_ = false;
    if (whole.has_value()) Completed(site, *whole);
    std::vector<RowId> others = bare;
    if (!whole.has_value()) {
      std::erase_if(others, [this, &site](RowId id) {
        const TransferItem* item = ItemOf(id);
        return item == nullptr || item->Description().site == site;
      });
    }
    Complete(others, go);
  });
}

void QueuedTransfers::Completed(const Site& kept, const Site& whole) {
  std::erase_if(bare_, [this, &kept, &whole](RowId id) {
    TransferItem* item = ItemOf(id);
    if (item == nullptr) return true;
    if (item->Description().site != kept) return false;
    item->SetSite(whole);
    return true;
  });
}

void QueuedTransfers::Move(const std::vector<int>& rows, int by) {
  std::vector<int> order = rows;
  if (by > 0) std::ranges::reverse(order);
  for (const int row : order) {
    if (!queue_.Move(rows_.At(row).Id(), by)) break;
    rows_.Move(row, by);
  }
  Tick();
}

void QueuedTransfers::Remove(int first, int count) {
  for (int row = first; row < first + count; ++row) {
    bare_.erase(rows_.At(row).Id());
    queue_.Remove(rows_.At(row).Id());
  }
  rows_.Remove(first, count);
  Tick();
}

void QueuedTransfers::FollowSettings() {
  Tick();
}

bool QueuedTransfers::AreKept() const {
  return store_ != nullptr && store_->Trouble().IsEmpty();
}

Text QueuedTransfers::Trouble() const {
  return store_ != nullptr ? store_->Trouble() : Text();
}

}  // namespace corvane
