#include "workers/TreeWalk.h"

#include <algorithm>
#include <chrono>
#include <thread>
#include <utility>

#include "kit/Background.h"
#include "remote/RemotePath.h"
#include "workers/WayDown.h"

namespace corvane {
namespace {

using Kind = Outcome::Kind;

constexpr int kMostTries = 3;
constexpr std::chrono::milliseconds kLook(20);
constexpr std::chrono::milliseconds kAfterFailure(500);  // before another connection is tried
constexpr std::chrono::milliseconds kForOthers(30);      // between pieces on a window's session
constexpr std::size_t kWorthALogin = 3;                  // directories that wait for each line

/// Keeps what a listing holds, as long as there may be more.
class Gathering final : public ListingSink {
 public:
  Gathering(std::atomic<std::int64_t>& seen, std::int64_t most) : seen_(seen), most_(most) {}

  std::vector<RemoteEntry> entries;
  std::size_t tooLong = 0;  // entries, by their names
  bool full = false;

  void Raw(std::string_view /*text*/) override {}
  bool Add(std::vector<RemoteEntry> batch) override {
    const auto count = static_cast<std::int64_t>(batch.size());
    if (seen_.fetch_add(count) + count > most_) full = true;
    if (!full) std::ranges::move(batch, std::back_inserter(entries));
    return !full;
  }
  void AddTooLong(const RemoteEntry& /*entry*/) override { ++tooLong; }

 private:
  std::atomic<std::int64_t>& seen_;
  const std::int64_t most_;
};

}  // namespace

TreeWalk::TreeWalk(Ways ways, std::shared_ptr<WalkUi> ui)
    : MThread("walk"),
      ways_(std::move(ways)),
      ui_(std::move(ui)),
      owner_(std::make_shared<WalkOwner>(ways_.window)),
      windows_(ways_.session != nullptr) {
  waiting_.push_back({});
}

void TreeWalk::Cancel() {
  MThread::Cancel();
  std::vector<std::shared_ptr<WalkLine>> lines;
  {
    const MutexLock hold(lock_);
    lines = lines_;
    changed_.NotifyAll();
  }
  for (const auto& line : lines) line->Stop();
}

std::int32_t TreeWalk::Execute() {
  while (KeepLines()) {
    const MutexLock hold(lock_);
    if (!lines_.empty() || !IsOver())
      (void)left_.WaitUntil(lock_, std::chrono::steady_clock::now() + kLook);
  }
  WalkEnd end;
  bool borrowed = false;
  {
    const MutexLock hold(lock_);
    borrowed = borrows_;
    end.outcome = Cancelled() ? Outcome::Cancelled() : outcome_;
    end.bound = bound_;
    end.refused = refusals_.Count();
    end.refusals = refusals_.Lines();
  }
  // On its connection the window was told of listings.
  if (borrowed) ways_.window->SetStatus(Text("Connected."));
  ui_->Ended(end);
  return 0;
}

bool TreeWalk::KeepLines() {
  bool wait = false;
  bool windows = false;
  {
    const MutexLock hold(lock_);
    if (lines_.empty() && (IsOver() || (failures_ >= kMostTries && !windows_))) return false;
    if (IsOver() || !IsWorthIt()) return true;
    wait = lines_.empty() && !outcome_.IsDone();
    windows = lines_.empty() && windows_;
    borrows_ = borrows_ || windows;
  }
  if (wait) std::this_thread::sleep_for(kAfterFailure);
  if (const auto line = NewLine(windows)) Start(line);
  return true;
}

bool TreeWalk::IsWorthIt() {
  if (lines_.empty()) return true;
  const auto ofPool = static_cast<std::size_t>(
      std::ranges::count_if(lines_, [](const auto& line) { return !line->IsWindows(); }));
  return begun_ && !full_ && ofPool < static_cast<std::size_t>(ways_.connections) &&
         !waiting_.empty() && (ofPool == 0 || waiting_.size() > kWorthALogin * ofPool);
}

std::shared_ptr<WalkLine> TreeWalk::NewLine(bool windows) {
  std::shared_ptr<WalkLine> line;
  if (windows) {
    line = std::make_shared<WalkLine>(ways_.session);
  } else if (auto lease = ways_.pool->Take(ways_.site, owner_, Site::kMostConnections)) {
    line = std::make_shared<WalkLine>(std::move(lease));
  }
  const MutexLock hold(lock_);
  if (line) return lines_.emplace_back(line);
  full_ = true;
  if (!lines_.empty()) return nullptr;
  outcome_ = {Kind::Busy, 0, Text("All connections to the server are in use.")};
  windows_ = ways_.session != nullptr;
  ++failures_;
  return nullptr;
}

void TreeWalk::Start(const std::shared_ptr<WalkLine>& line) {
  const bool runs =
      Background::Start("walk line", [self = shared_from_this(), this, line] { Work(line); });
  if (runs) return;
  const MutexLock hold(lock_);
  std::erase(lines_, line);
  full_ = true;
  if (lines_.empty()) End(Outcome::LocalError(Text("The system has no thread to give.")));
}

void TreeWalk::Work(const std::shared_ptr<WalkLine>& line) {
  if (Cancelled()) line->Stop();
  for (;;) {
    std::optional<Unit> unit = Next();
    if (!unit) break;
    Outcome outcome;
    try {
      outcome = line->With([&](RemoteSession& session) { return Carry(session, *unit); });
    } catch (const std::exception& error) {
      outcome = Outcome::LocalError(Text("The request could not be carried out: %1", error.what()));
    }
    if (!Settle(std::move(*unit), outcome, *line) || Leaves(*line)) break;
  }
  line->Return();
  const MutexLock hold(lock_);
  std::erase(lines_, line);
  changed_.NotifyAll();
  left_.NotifyAll();
}

bool TreeWalk::Leaves(const WalkLine& line) {
  if (!line.IsWindows()) return false;
  {
    const MutexLock hold(lock_);
    if (waiting_.empty() || IsOver()) return false;
    const auto stands = [](const auto& other) {
      return !other->IsWindows() && other->IsConnected();
    };
    if (std::ranges::any_of(lines_, stands)) {
      windows_ = false;
      return true;
    }
  }
  std::this_thread::sleep_for(kForOthers);
  return false;
}

std::optional<TreeWalk::Unit> TreeWalk::Next() {
  const MutexLock hold(lock_);
  for (;;) {
    if (IsOver()) return std::nullopt;
    std::optional<Unit> unit;
    if (!waiting_.empty()) {
      unit = std::move(waiting_.front());
      waiting_.pop_front();
    } else if (working_ == 0) {
      if (std::exchange(lastGiven_, true)) return std::nullopt;
      unit = Unit{.kind = Unit::Kind::Last};
    }
    if (unit) {
      ++working_;
      return unit;
    }
    changed_.Wait(lock_);
  }
}

Outcome TreeWalk::Carry(RemoteSession& session, const Unit& unit) {
  switch (unit.kind) {
    case Unit::Kind::First: {
      {
        const MutexLock hold(lock_);
        begin_.clear();
      }
      return First(session);
    }
    case Unit::Kind::Last: return Last(session);
    case Unit::Kind::Directory: break;
  }
  return Look(session, unit.directory);
}

Outcome TreeWalk::Look(RemoteSession& session, const Directory& directory) {
  std::string where;
  if (Outcome entered = session.Enter(directory.path, where); !entered.IsDone()) return entered;
  if (!directory.chosen && WayDown::LeadsElsewhere(directory.path, where)) {
    Refuse(directory.path, Text("Left alone, for it leads to %1", where));
    return {};
  }
  {
    const MutexLock hold(lock_);
    if (!entered_.insert(where).second) {
      Note(directory.path, Text("The server lists a directory inside itself: %1", where));
      return {};
    }
  }
  Outcome outcome = List(session, directory, where);
  if (outcome.kind == Kind::Lost || outcome.kind == Kind::Cancelled) {
    const MutexLock hold(lock_);
    entered_.erase(where);
  }
  return outcome;
}

Outcome TreeWalk::List(RemoteSession& session, const Directory& directory,
                       const std::string& where) {
  Gathering listing(seen_, limits.entries);
  Outcome listed = session.List(where, listing);
  const bool ended = listed.kind == Kind::Lost || listed.kind == Kind::Cancelled;
  if (ended && !listing.full) return listed;
  if (listing.full) EndAt(Text("It stopped after %1 entries, in %2.", limits.entries, where));
  const auto leadsAway = [](const RemoteEntry& entry) {
    return entry.name.find('/') != std::string::npos;
  };
  if (listed.IsDone() && !listed.text.IsEmpty())
    Refuse(where, listed.text, std::max<std::size_t>(listing.tooLong, 1));
  if (const auto count = std::erase_if(listing.entries, leadsAway); count > 0)
    Refuse(where, Text("%1 names lead elsewhere.", count));
  if (Outcome taken = Take(session, {where, directory.depth, directory.chosen, directory.path},
                           listing.entries);
      !taken.IsDone())
    return taken;
  WalkProgress& progress = ui_->progress;
  ++progress.directories;
  for (const RemoteEntry& entry : listing.entries) {
    const bool folder = entry.kind == RemoteEntry::Kind::Directory;
    ++(folder ? progress.folders : progress.files);
    if (!folder) progress.bytes += entry.size.value_or(0);
    if (folder) Add({PathBelow(where, entry.name), directory.depth + 1});
  }
  return listing.full ? Outcome() : listed;
}

void TreeWalk::Add(Directory directory) {
  if (directory.depth > limits.depth)
    return Refuse(directory.path, Text("The directories are nested too deeply."));
  const MutexLock hold(lock_);
  if (!bound_.IsEmpty()) return;
  if (!begun_) return begin_.push_back(std::move(directory));
  waiting_.push_back({Unit::Kind::Directory, std::move(directory)});
  changed_.NotifyOne();
}

// What was cancelled, and not by the walk, is lost: somebody else needs the session.
bool TreeWalk::Settle(Unit unit, Outcome outcome, const WalkLine& line) {
  if (outcome.kind == Kind::Cancelled) outcome = {Kind::Lost, 0, Text("The connection is closed")};
  const bool connects = !line.IsWindows() && !line.IsConnected();
  const bool full = connects && outcome.trouble == Outcome::Trouble::TooMany;
  if (full && ways_.pool->Used(ways_.site) > 1) ways_.pool->Full(ways_.site);
  const MutexLock hold(lock_);
  --working_;
  changed_.NotifyAll();
  const bool gone =
      outcome.kind == Kind::Lost || connects || (line.IsWindows() && !line.IsConnected());
  if (IsOver()) return false;
  if (gone) {
    full_ = full_ || connects;
    windows_ = connects && ways_.session != nullptr;
    const bool mayPass = full || outcome.kind == Kind::Lost || outcome.kind == Kind::Busy;
    const bool worked = line.IsConnected();
    unit.tries += worked ? 1 : 0;
    if (connects || unit.tries == kMostTries) failures_ = mayPass ? failures_ + 1 : kMostTries;
    outcome_ = outcome;
    if (unit.tries < kMostTries) {
      waiting_.push_front(std::move(unit));
      return false;
    }
  }
  if (!gone) failures_ = 0;
  if (outcome.IsDone()) {
    if (unit.kind == Unit::Kind::Last) End({});
    if (unit.kind != Unit::Kind::First) return true;
    begun_ = true;
    for (Directory& directory : begin_)
      waiting_.push_back({Unit::Kind::Directory, std::move(directory)});
    begin_.clear();
    return true;
  }
  if (unit.kind != Unit::Kind::Directory) {
    End(outcome);
    return false;
  }
  Note(unit.directory.path, outcome.text.Reason());
  return !gone;
}

void TreeWalk::End(const Outcome& outcome) {
  over_ = true;
  outcome_ = outcome;
  changed_.NotifyAll();
}

void TreeWalk::Refuse(const std::string& path, const Text& why, std::size_t entries) {
  const MutexLock hold(lock_);
  Note(path, why, entries);
}

// The user sees paths from where the walk began.
void TreeWalk::Note(const std::string& path, const Text& why, std::size_t entries) {
  const std::string above = PathBelow(base, "");
  ui_->progress.failed += static_cast<std::int64_t>(entries);
  const bool below = path.size() > above.size() && path.starts_with(above);
  refusals_.Add(below ? path.substr(above.size()) : path, why, entries);
}

void TreeWalk::Fail(const Outcome& outcome) {
  const MutexLock hold(lock_);
  if (!over_) End(outcome);
}

void TreeWalk::EndAt(const Text& bound) {
  const MutexLock hold(lock_);
  if (bound_.IsEmpty()) bound_ = bound;
  waiting_.clear();
}

}  // namespace corvane
