#include <cerrno>
#include <system_error>

#include "prefs/BuiltInPrefs.h"
#include "prefs/PrefRecords.h"

namespace corvane::builtin {

PREFStatus SetData(PREFSet* set, const char* name, const void* data, std::int32_t size,
                   std::uint32_t type) {
  if (name == nullptr || size < 0 || (data == nullptr && size > 0)) return -EINVAL;
  const MutexLock hold(prefsSem);
  if (const PREFStatus status = Check(set)) return status;
  // A copy: the bytes may be those of the very item, lent by GetData.
  const std::string bytes(static_cast<const char*>(data), static_cast<std::size_t>(size));
  set->message.RemoveName(name);
  return set->message.AddData(name, type, bytes) ? 0 : -EINVAL;
}

PREFStatus GetData(PREFSet* set, const char* name, const void** data, std::int32_t* size,
                   std::uint32_t* type) {
  if (name == nullptr || data == nullptr || size == nullptr || type == nullptr) return -EINVAL;
  const MutexLock hold(prefsSem);
  if (const PREFStatus status = Check(set)) return status;
  const auto found = set->message.TypeOf(name);
  if (!found) return kPrefNotFound;
  const auto bytes = set->message.FindData(name, *found);
  if (!bytes) return kPrefNotFound;
  *data = bytes->data();
  *size = static_cast<std::int32_t>(bytes->size());
  *type = *found;
  return 0;
}

PREFStatus Delete(PREFSet* set, const char* name) {
  if (name == nullptr) return -EINVAL;
  const MutexLock hold(prefsSem);
  if (const PREFStatus status = Check(set)) return status;
  return set->message.RemoveName(name) ? 0 : kPrefNotFound;
}

Message* GetMessage(PREFSet* set) {
  const MutexLock hold(prefsSem);
  return Check(set) == 0 ? &set->message : nullptr;
}

PREFStatus BeginTransaction(PREFSet* set, PREFTransaction** transaction) {
  if (transaction == nullptr) return -EINVAL;
  *transaction = nullptr;
  const MutexLock hold(prefsSem);
  if (const PREFStatus status = Check(set)) return status;
  HeldFile held(*set);
  if (held.Error() != 0) return -held.Error();
  held.Keep();
  *transaction = set->transaction.get();
  return 0;
}

PREFStatus EndTransaction(PREFTransaction* transaction) {
  if (transaction == nullptr) return -EINVAL;
  const MutexLock hold(prefsSem);
  for (const auto& app : Store().apps) {
    for (const auto& set : app->sets) {
      if (set->transaction.get() != transaction) continue;
      corvane::EndTransaction(*set);
      return 0;
    }
  }
  return kPrefNotFound;  // its set has gone, and it with the set
}

PREFStatus Listen(PREFSet* set, PREFListener listener, void* cookie) {
  if (listener == nullptr) return -EINVAL;
  std::unique_ptr<PrefListener> previous;
  const MutexLock hold(prefsSem);
  if (const PREFStatus status = Check(set)) return status;
  const HeldFile held(*set);  // makes sure that there is a file
  if (held.Error() != 0) return -held.Error();
  try {
    previous =
        std::make_unique<PrefListener>(set, set->path, Store().pollInterval, listener, cookie);
  } catch (const std::system_error& failure) {
    return -failure.code().value();
  }
  previous.swap(set->listener);
  return 0;
}

}  // namespace corvane::builtin
