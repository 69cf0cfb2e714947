#include "prefs/PrefRecords.h"

#include <cerrno>

namespace corvane {

PrefStore& Store() {
  // Never destroyed: a listener may still be at work while the process ends.
  static PrefStore& store = *new PrefStore;
  return store;
}

PREFStatus Check(const PREFApp* app) {
  if (app == nullptr) return -EINVAL;
  for (const auto& each : Store().apps) {
    if (each.get() == app) return 0;
  }
  return kPrefNotFound;
}

PREFStatus Check(const PREFSet* set) {
  if (set == nullptr) return -EINVAL;
  for (const auto& app : Store().apps) {
    for (const auto& each : app->sets) {
      if (each.get() == set) return 0;
    }
  }
  return kPrefNotFound;
}

HeldFile::HeldFile(PREFSet& set) : set_(set) {
  if (set.transaction) {
    ++set.transaction->references;
    return;
  }
  auto fresh = std::make_unique<PREFTransaction>();
  fresh->set = &set;
  error_ = fresh->file.Lock(set.path, set.perUser);
  if (error_ == 0) set.transaction = std::move(fresh);
}

HeldFile::~HeldFile() {
  if (error_ == 0 && !kept_) EndTransaction(set_);
}

void EndTransaction(PREFSet& set) {
  if (--set.transaction->references == 0) set.transaction.reset();
}

}  // namespace corvane
