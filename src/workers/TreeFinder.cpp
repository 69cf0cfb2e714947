#include "workers/TreeFinder.h"

#include <ctime>

#include "util/Encodings.h"

namespace corvane {
namespace {

constexpr std::size_t kBatch = 300;

std::int64_t OnTheClock(const RemoteTime& time) {
  const std::time_t seconds = time.seconds;
  std::tm local{};
  if (!time.utc || ::localtime_r(&seconds, &local) == nullptr) return time.seconds;
  return time.seconds + local.tm_gmtoff;
}

}  // namespace

bool FindRule::Fits(const RemoteEntry& entry) const {
  if (kind && entry.kind != *kind) return false;
  if (least || most) {
    if (entry.kind != RemoteEntry::Kind::File || !entry.size) return false;
    if (*entry.size < least.value_or(0) || *entry.size > most.value_or(*entry.size)) return false;
  }
  if (from || before) {
    if (!entry.modified) return false;
    const std::int64_t changed = OnTheClock(*entry.modified);
    if (changed < from.value_or(changed) || (before && changed >= *before)) return false;
  }
  return name.Fits(Decoded(entry.name, encoding));
}

Outcome TreeFinder::First(RemoteSession& /*session*/) {
  Add({base, 0, true});
  return {};
}

Outcome TreeFinder::Take(RemoteSession& /*session*/, const Directory& directory,
                         const std::vector<RemoteEntry>& entries) {
  std::vector<FoundEntry> found;
  const auto hand = [&] {
    const bool more = Ui().Found(std::exchange(found, {}));
    if (!more) Fail(Outcome::Cancelled());
    return more;
  };
  for (const RemoteEntry& entry : entries) {
    if (Cancelled()) return Outcome::Cancelled();
    if (!rule_.Fits(entry)) continue;
    if (++Ui().progress.found > mostFound) {
      --Ui().progress.found;
      EndAt(Text("It stopped after %1 were found.", mostFound));
      break;
    }
    found.push_back({directory.path, entry});
    if (found.size() >= kBatch && !hand()) return Outcome::Cancelled();
  }
  return found.empty() || hand() ? Outcome() : Outcome::Cancelled();
}

}  // namespace corvane
