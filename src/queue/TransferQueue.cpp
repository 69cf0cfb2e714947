#include "queue/TransferQueue.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <map>
#include <utility>

namespace corvane {
namespace {

// Names of hosts are the same in either case.
std::string ServerOf(const Site& site) {
  std::string server = site.host;
  std::ranges::transform(server, server.begin(),
                         [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return server + ":" + std::to_string(site.port);
}

}  // namespace

TransferQueue::TransferQueue(Carrier carrier, std::shared_ptr<QueueJournal> journal)
    : carrier_(std::move(carrier)), journal_(std::move(journal)) {}

void TransferQueue::SetLimits(const Limits& limits) {
  limits_ = limits;
}

void TransferQueue::Add(RowId id, const transferStruct& what) {
  rows_.push_back({id, ServerOf(what.site)});
  if (journal_) journal_->RowAdded(id, what);
}

void TransferQueue::Restore(RowId id, const transferStruct& what, RowState state) {
  rows_.push_back({id, ServerOf(what.site), state});
}

void TransferQueue::Remove(RowId id) {
  const auto place = Place(id);
  if (place == rows_.end() || !CanRemove(place->state)) return;
  // What is still carried was stopped when it ceased to be Running.
  const bool kept = place->state != RowState::Done;
  rows_.erase(place);
  if (journal_ && kept) journal_->RowRemoved(id);
}

bool TransferQueue::CanPause(RowState state) {
  return state == RowState::Waiting || state == RowState::Running || state == RowState::Again;
}

bool TransferQueue::CanCancel(RowState state) {
  return CanPause(state) || state == RowState::Paused;
}

bool TransferQueue::CanRetry(RowState state) {
  return state == RowState::Failed || state == RowState::Cancelled;
}

void TransferQueue::Pause(RowId id) {
  Row* const row = At(id);
  if (row != nullptr && CanPause(row->state)) Leave(*row, RowState::Paused);
}

void TransferQueue::Resume(RowId id) {
  Row* const row = At(id);
  if (row != nullptr && CanResume(row->state)) Await(*row);
}

void TransferQueue::Cancel(RowId id) {
  Row* const row = At(id);
  if (row != nullptr && CanCancel(row->state)) Leave(*row, RowState::Cancelled);
}

void TransferQueue::Retry(RowId id) {
  Row* const row = At(id);
  if (row != nullptr && CanRetry(row->state)) Await(*row);
}

void TransferQueue::TryNow(RowId id) {
  Row* const row = At(id);
  if (row != nullptr && CanTryNow(row->state)) Set(*row, RowState::Waiting);
}

void TransferQueue::TryAllNow() {
  for (Row& row : rows_)
    if (CanTryNow(row.state)) Set(row, RowState::Waiting);
}

bool TransferQueue::Move(RowId id, int by) {
  const auto place = Place(id);
  const auto from = place - rows_.begin();
  const auto to = from + by;
  if (place == rows_.end() || to < 0 || to >= std::ssize(rows_) || to == from) return false;
  if (to < from) std::rotate(rows_.begin() + to, place, place + 1);
  if (to > from) std::rotate(place, place + 1, rows_.begin() + to + 1);
  if (!journal_) return true;
  std::vector<RowId> order;
  for (const Row& row : rows_)
    if (row.state != RowState::Done) order.push_back(row.id);
  journal_->RowsOrdered(order);
  return true;
}

void TransferQueue::Ended(RowId id, TransferEnd end, bool progress, Time now) {
  Row* const row = At(id);
  if (row == nullptr || !row->carried) return;
  row->carried = false;
  if (end == TransferEnd::Finished) return Set(*row, RowState::Done);
  // It was stopped, and stands as the user wants it.
  if (row->state != RowState::Running) return;
  if (end == TransferEnd::Again) return TryLater(*row, progress, now);
  Set(*row, end == TransferEnd::Failed ? RowState::Failed : RowState::Cancelled);
}

void TransferQueue::TryLater(Row& row, bool progress, Time now) {
  if (progress) row.tries = 0;
  if (row.tries >= limits_.tries) return Set(row, RowState::Failed);
  ++row.tries;
  row.again = now + Wait(row.tries);
  Set(row, RowState::Again);
}

std::chrono::milliseconds TransferQueue::Wait(int tries) const {
  constexpr std::array kSeconds{2, 5, 15, 60};
  const auto place = static_cast<std::size_t>(std::clamp<int>(tries, 1, std::ssize(kSeconds)) - 1);
  return std::chrono::milliseconds(limits_.first) * kSeconds.at(place) / kSeconds.front();
}

std::optional<TransferQueue::Time> TransferQueue::Tick(Time now) {
  std::optional<Time> next;
  for (Row& row : rows_) {
    if (row.state != RowState::Again) continue;
    if (row.again <= now) {
      Set(row, RowState::Waiting);
    } else if (!next || row.again < *next) {
      next = row.again;
    }
  }
  StartWaiting();
  return next;
}

// What was stopped and has not ended still holds its connections, and so its place.
void TransferQueue::StartWaiting() {
  int all = 0;
  std::map<std::string, int> ofServer;
  for (const Row& row : rows_) {
    if (!row.carried) continue;
    ++all;
    ++ofServer[row.server];
  }
  std::vector<RowId> started;
  for (Row& row : rows_) {
    if (all >= limits_.rows) break;
    if (row.state != RowState::Waiting || row.carried) continue;
    int& there = ofServer[row.server];
    if (there >= limits_.rowsPerServer) continue;
    ++all;
    ++there;
    row.carried = true;
    Set(row, RowState::Running);
    started.push_back(row.id);
  }
  for (const RowId id : started) carrier_.start(id);
}

const TransferQueue::Row* TransferQueue::Find(RowId id) const {
  const auto place = std::ranges::find(rows_, id, &Row::id);
  return place != rows_.end() ? &*place : nullptr;
}

std::vector<TransferQueue::Row>::iterator TransferQueue::Place(RowId id) {
  return std::ranges::find(rows_, id, &Row::id);
}

TransferQueue::Row* TransferQueue::At(RowId id) {
  const auto place = Place(id);
  return place != rows_.end() ? &*place : nullptr;
}

void TransferQueue::Set(Row& row, RowState state) {
  if (row.state == state) return;
  row.state = state;
  if (!journal_) return;
  if (state == RowState::Done) {
    journal_->RowRemoved(row.id);
  } else {
    journal_->RowChanged(row.id, state);
  }
}

void TransferQueue::Leave(Row& row, RowState state) {
  const bool stops = row.carried && row.state == RowState::Running;
  Set(row, state);
  if (stops) carrier_.stop(row.id);
}

void TransferQueue::Await(Row& row) {
  row.tries = 0;
  Set(row, RowState::Waiting);
}

}  // namespace corvane
