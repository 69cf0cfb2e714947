#include "settings/ProcessSettings.h"

#include <utility>

#include "kit/Mutex.h"

namespace corvane {
namespace {

struct Store {
  Mutex lock;
  SettingsValues values GUARDED_BY(lock);
};

Store& TheStore() {
  static Store store;
  return store;
}

}  // namespace

SettingsValues ProcessSettings::Get() {
  Store& store = TheStore();
  MutexLock hold(store.lock);
  return store.values;
}

void ProcessSettings::Set(SettingsValues values) {
  Store& store = TheStore();
  MutexLock hold(store.lock);
  store.values = std::move(values);
}

}  // namespace corvane
