#pragma once

#include <chrono>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "kit/Message.h"
#include "kit/Mutex.h"
#include "prefs/PREF.h"
#include "prefs/PrefFile.h"
#include "prefs/PrefListener.h"

/// The records behind the handles. One lock guards them all, for the whole of every call, file
/// access included. Where a call needs a set's file too, it takes that lock second.
namespace corvane {

inline Mutex prefsSem;

struct PREFTransaction {
  PREFSet* set;
  PrefFile file;
  int references = 1;
};

struct PREFSet {
  PREFSet(PREFApp* owner, std::string file, bool ofUser)
      : app(owner), path(std::move(file)), perUser(ofUser) {}

  PREFApp* const app;
  const std::string path;
  const bool perUser;
  int references GUARDED_BY(prefsSem) = 1;
  Message message GUARDED_BY(prefsSem);
  std::unique_ptr<PREFTransaction> transaction GUARDED_BY(prefsSem);  ///< none while not open
  /// Must end without the lock, which its call may be waiting for.
  std::unique_ptr<PrefListener> listener GUARDED_BY(prefsSem);
};

struct PREFApp {
  explicit PREFApp(std::string ofName) : name(std::move(ofName)) {}

  const std::string name;
  int references GUARDED_BY(prefsSem) = 1;
  std::vector<std::unique_ptr<PREFSet>> sets GUARDED_BY(prefsSem);
};

struct PrefStore {
  std::vector<std::unique_ptr<PREFApp>> apps GUARDED_BY(prefsSem);
  std::chrono::microseconds pollInterval GUARDED_BY(prefsSem) = kPollInterval;
};

[[nodiscard]] PrefStore& Store() REQUIRES(prefsSem);

/// 0 for a handle of a record that lives, -EINVAL for null, kPrefNotFound for any other. A listener
/// may still hold the handle of a set that is gone.
[[nodiscard]] PREFStatus Check(const PREFApp* app) REQUIRES(prefsSem);
[[nodiscard]] PREFStatus Check(const PREFSet* set) REQUIRES(prefsSem);

/// The set's file under its lock for the length of a scope: the open transaction, or a new one.
class HeldFile {
 public:
  explicit HeldFile(PREFSet& set) REQUIRES(prefsSem);
  ~HeldFile() REQUIRES(prefsSem);
  HeldFile(const HeldFile&) = delete;
  HeldFile& operator=(const HeldFile&) = delete;

  /// Why there is no file: an errno number, or 0.
  [[nodiscard]] int Error() const { return error_; }
  [[nodiscard]] PrefFile& File() const REQUIRES(prefsSem) { return set_.transaction->file; }
  /// Leaves the transaction open.
  void Keep() { kept_ = true; }

 private:
  PREFSet& set_;
  int error_ = 0;
  bool kept_ = false;
};

/// Drops a reference to the set's transaction; the last one frees the file.
void EndTransaction(PREFSet& set) REQUIRES(prefsSem);

}  // namespace corvane
