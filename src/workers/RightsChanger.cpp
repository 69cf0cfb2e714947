#include "workers/RightsChanger.h"

#include <algorithm>

#include "remote/Permissions.h"
#include "remote/RemotePath.h"

namespace corvane {
namespace {

using Kind = Outcome::Kind;
using Below = RightsOrder::Below;

constexpr unsigned kLookThrough = 0500;  // what its owner needs to look through a directory

bool IsDirectory(const RemoteEntry& entry) {
  return entry.kind == RemoteEntry::Kind::Directory;
}

}  // namespace

std::optional<unsigned> RightsChange::Of(std::optional<unsigned> now, bool keepsExecute) const {
  constexpr unsigned kRights = Permissions::kRights;
  if (!now && (mask & kRights) != kRights) return std::nullopt;
  const unsigned old = now.value_or(0);
  unsigned wanted = bits & mask;
  if (keepsExecute && (old & Permissions::kExecute) == 0) wanted &= ~Permissions::kExecute;
  return (old & ~mask) | wanted;
}

bool RightsChanger::Concerns(const RemoteEntry& entry) const {
  if (!order_.rights || entry.kind == RemoteEntry::Kind::Link) return false;
  if (order_.below == Below::Files) return !IsDirectory(entry);
  return order_.below != Below::Directories || IsDirectory(entry);
}

// What was listed just now and is right already needs no command; what the user chose was listed
// some time ago. A directory below is changed once it has been looked at and is no link, but for
// one that cannot be looked at as it is.
void RightsChanger::Plan(const std::string& directory, const RemoteEntry& entry, bool chosen,
                         std::vector<ModeChange>& changes) {
  if (!Concerns(entry)) return;
  const bool keepsExecute = !chosen && !IsDirectory(entry) && order_.below == Below::Everything;
  const std::optional<unsigned> now = Permissions::Bits(entry.mode);
  const std::optional<unsigned> wanted = order_.rights->Of(now, keepsExecute);
  const std::string path = PathBelow(directory, entry.name);
  if (!wanted) return Refuse(path, Text("The server does not tell its permissions."));
  if (!chosen && wanted == now) return;
  const bool shut = now && (*now & kLookThrough) != kLookThrough;
  const bool waits = IsDirectory(entry) && !chosen && !shut;
  if (!waits && !(IsDirectory(entry) && Closes(*wanted))) return changes.push_back({path, *wanted});
  const MutexLock hold(late_);
  if (waits) {
    unseen_.insert_or_assign(path, *wanted);
  } else {
    closing_.push_back({path, *wanted});
  }
}

bool RightsChanger::Closes(unsigned mode) const {
  return order_.below != Below::Nothing && (mode & kLookThrough) != kLookThrough;
}

void RightsChanger::PlanSelf(const std::string& path, std::vector<ModeChange>& changes) {
  const MutexLock hold(late_);
  const auto found = unseen_.find(path);
  if (found == unseen_.end()) return;
  const ModeChange change{path, found->second};
  if (!Closes(change.mode)) return changes.push_back(change);
  closing_.push_back(change);
  unseen_.erase(found);
}

Outcome RightsChanger::First(RemoteSession& session) {
  {
    const MutexLock hold(late_);
    closing_.clear();
  }
  std::vector<ModeChange> changes;
  for (const RemoteEntry& entry : order_.entries) {
    Plan(order_.directory, entry, true, changes);
    const bool deeper = order_.rights && order_.below != Below::Nothing && IsDirectory(entry);
    if (deeper) Add({PathBelow(order_.directory, entry.name)});
  }
  return Change(session, changes);
}

Outcome RightsChanger::Take(RemoteSession& session, const Directory& directory,
                            const std::vector<RemoteEntry>& entries) {
  std::vector<ModeChange> changes;
  for (const RemoteEntry& entry : entries) Plan(directory.path, entry, false, changes);
  PlanSelf(directory.listed, changes);
  Outcome changed = Change(session, changes);
  const MutexLock hold(late_);
  if (changed.IsDone()) unseen_.erase(directory.listed);
  return changed;
}

Outcome RightsChanger::Change(RemoteSession& session, std::span<const ModeChange> changes) {
  if (changes.empty()) return {};
  Outcome outcome = session.ChangeModes(changes, [&](std::size_t which, const Outcome& each) {
    if (each.IsDone()) {
      ++Ui().progress.changed;
    } else if (each.kind != Kind::Lost && each.kind != Kind::Cancelled) {
      Refuse(changes[which].path, each.text.Reason());
    }
    return !Cancelled();
  });
  if (outcome.kind == Kind::Refused) Fail(outcome);
  return outcome;
}

Outcome RightsChanger::Last(RemoteSession& session) {
  std::vector<ModeChange> closing;
  {
    const MutexLock hold(late_);
    closing = closing_;
  }
  std::ranges::reverse(closing);
  if (Outcome closed = Change(session, closing); !closed.IsDone()) return closed;
  if (!order_.time) return {};
  for (const RemoteEntry& entry : order_.entries) {
    if (entry.kind == RemoteEntry::Kind::Link) continue;
    const std::string path = PathBelow(order_.directory, entry.name);
    Outcome set = session.SetModifiedTime(path, *order_.time);
    if (set.kind == Kind::Lost || set.kind == Kind::Cancelled) return set;
    if (!set.IsDone()) Refuse(path, set.text.Reason());
    if (set.IsDone() && !order_.rights) ++Ui().progress.changed;
  }
  return {};
}

}  // namespace corvane
