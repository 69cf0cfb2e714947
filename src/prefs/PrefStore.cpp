#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <utility>

#include "prefs/BuiltInPrefs.h"
#include "prefs/PrefPaths.h"
#include "prefs/PrefRecords.h"

namespace corvane::builtin {
namespace {

constexpr std::size_t kPathLimit = 1024;
// A reload of a file that holds no length.
constexpr PREFStatus kNothingToReload = -1;

using Extent = PrefFile::Extent;

// Takes a record out of its list. What it owns ends with the answer, which the caller lets go of
// after the lock.
template <typename Record>
std::unique_ptr<Record> TakeOut(std::vector<std::unique_ptr<Record>>& list, const Record* record) {
  const auto found = std::find_if(list.begin(), list.end(),
                                  [record](const auto& each) { return each.get() == record; });
  std::unique_ptr<Record> taken = std::move(*found);
  list.erase(found);
  return taken;
}

PREFStatus RemoveTree(const std::string& path) {
  std::error_code failure;
  std::filesystem::remove_all(path, failure);
  return -failure.value();
}

// Reads the file of a set that is being loaded. A file that is new or cut leaves the set empty.
PREFStatus ReadNew(PREFSet& set) REQUIRES(prefsSem) {
  const HeldFile held(set);
  if (held.Error() != 0) return -held.Error();
  PrefFile::Reading reading = held.File().Read();
  if (reading.error != 0) return -reading.error;
  if (reading.extent == Extent::NotAMessage) return -ENOMEM;
  set.message = std::move(reading.message);
  return 0;
}

}  // namespace

const char* Version(std::int32_t* version, std::int32_t* compatible) {
  if (version != nullptr) *version = 124;
  if (compatible != nullptr) *compatible = 120;
  return "simple libprefs.so version 1.2.4";
}

PREFStatus Init(const char* name, PREFApp** app) {
  if (app == nullptr) return -EINVAL;
  *app = nullptr;
  if (name == nullptr || *name == '\0' || std::strchr(name, '/') != nullptr) return -EINVAL;
  const MutexLock hold(prefsSem);
  PrefStore& store = Store();
  if (const char* const text = std::getenv("POLL_INTERVAL")) {
    store.pollInterval = ParsePollInterval(text).value_or(store.pollInterval);
  }
  for (const auto& each : store.apps) {
    if (each->name != name) continue;
    ++each->references;
    *app = each.get();
    return 0;
  }
  *app = store.apps.emplace_back(std::make_unique<PREFApp>(name)).get();
  return 0;
}

PREFStatus Shutdown(PREFApp* app) {
  std::unique_ptr<PREFApp> ended;
  const MutexLock hold(prefsSem);
  if (const PREFStatus status = Check(app)) return status;
  if (--app->references > 0) return 0;
  ended = TakeOut(Store().apps, app);
  for (const auto& set : ended->sets) set->transaction.reset();
  return 0;
}

PREFStatus LoadSet(PREFApp* app, const char* name, bool perUser, PREFSet** set) {
  if (set == nullptr) return -EINVAL;
  *set = nullptr;
  if (name == nullptr || !IsSetName(name)) return -EINVAL;
  const MutexLock hold(prefsSem);
  if (const PREFStatus status = Check(app)) return status;
  const std::string base = BaseDirectory(perUser);
  if (base.empty()) return -ENOENT;
  const std::string path = SetDirectory(base, app->name, perUser) + "/" + name;
  if (path.size() > kPathLimit) return kPrefPathTooLong;
  for (const auto& each : app->sets) {
    if (each->path != path) continue;
    ++each->references;
    *set = each.get();
    return 0;
  }
  if (const int error = MakeDirectories(base, path, perUser)) return -error;
  auto fresh = std::make_unique<PREFSet>(app, path, perUser);
  if (const PREFStatus status = ReadNew(*fresh)) return status;
  *set = app->sets.emplace_back(std::move(fresh)).get();
  return 0;
}

PREFStatus ReloadSet(PREFSet* set) {
  const MutexLock hold(prefsSem);
  if (const PREFStatus status = Check(set)) return status;
  const HeldFile held(*set);
  if (held.Error() != 0) return -held.Error();
  PrefFile::Reading reading = held.File().Read();
  if (reading.error != 0) return -reading.error;
  switch (reading.extent) {
    case Extent::NoLength: return kNothingToReload;
    case Extent::ShortBody: return -EIO;
    case Extent::NotAMessage: return -ENOMEM;
    case Extent::Whole: set->message = std::move(reading.message); break;
  }
  return 0;
}

PREFStatus SaveSet(PREFSet* set) {
  const MutexLock hold(prefsSem);
  if (const PREFStatus status = Check(set)) return status;
  const HeldFile held(*set);
  return held.Error() != 0 ? -held.Error() : -held.File().Replace(set->message);
}

PREFStatus DisposeSet(PREFSet** set) {
  if (set == nullptr) return -EINVAL;
  std::unique_ptr<PREFSet> ended;
  const MutexLock hold(prefsSem);
  PREFSet* const given = *set;
  if (const PREFStatus status = Check(given)) return status;
  if (--given->references > 0) return 0;
  {
    // Lets a process that is saving finish. Whether or not it does in time, the set goes.
    const HeldFile waited(*given);
  }
  given->transaction.reset();
  ended = TakeOut(given->app->sets, given);
  *set = nullptr;
  return 0;
}

PREFStatus RemoveSet(PREFSet* set) {
  std::unique_ptr<PREFSet> ended;
  const MutexLock hold(prefsSem);
  if (const PREFStatus status = Check(set)) return status;
  if (set->references > 1) return kPrefInUse;
  ended = TakeOut(set->app->sets, set);
  ended->transaction.reset();
  return RemoveTree(ended->path);
}

PREFStatus RemoveApp(PREFApp* app) {
  std::unique_ptr<PREFApp> ended;
  const MutexLock hold(prefsSem);
  if (const PREFStatus status = Check(app)) return status;
  if (app->references > 1) return kPrefInUse;
  for (const auto& set : app->sets) {
    if (set->references > 1) return kPrefInUse;
  }
  const std::string base = BaseDirectory(true);
  if (base.empty()) return -ENOENT;
  ended = TakeOut(Store().apps, app);
  for (const auto& set : ended->sets) set->transaction.reset();
  return RemoveTree(AppDirectory(base, ended->name));
}

}  // namespace corvane::builtin
