#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>

#include "kit/Mutex.h"

namespace corvane {

/// What was learned of a server by use, for all sessions with it while the program runs. Any
/// thread.
struct Habits {
  enum class Learned : std::uint8_t { Unknown, Yes, No };

  /// Takes a command before it has answered the one before it.
  std::atomic<Learned> takesAhead{Learned::Unknown};
  /// Looks at commands while it is still receiving a file, so that none may come before it has
  /// said that it has the file.
  std::atomic<Learned> waitsForUploads{Learned::Unknown};
  /// Data connections come about when they are passive; and when they are active.
  std::atomic<Learned> passive{Learned::Unknown};
  std::atomic<Learned> active{Learned::Unknown};
  /// Lets a file that was sent under another name take the place of one that is there.
  std::atomic<Learned> replacesByRename{Learned::Unknown};
  /// So many connections at once it takes; 0 while none was turned away.
  std::atomic<int> mostConnections{0};

  /// The account that the user has given for it; empty where none was asked for, or it was refused.
  [[nodiscard]] std::string Account() EXCLUDES(lock_) {
    const MutexLock hold(lock_);
    return account_;
  }
  void SetAccount(std::string account) EXCLUDES(lock_) {
    const MutexLock hold(lock_);
    account_ = std::move(account);
  }

  /// What the server has told of itself, by what it was asked; nothing where that is long ago.
  [[nodiscard]] std::optional<std::string> Told(const std::string& asked) EXCLUDES(lock_) {
    const MutexLock hold(lock_);
    const auto found = told_.find(asked);
    if (found == told_.end() || Clock::now() - found->second.when > kFresh) return std::nullopt;
    return found->second.text;
  }
  void NoteTold(const std::string& asked, std::string text) EXCLUDES(lock_) {
    const MutexLock hold(lock_);
    told_[asked] = {std::move(text), Clock::now()};
  }

 private:
  using Clock = std::chrono::steady_clock;
  static constexpr std::chrono::seconds kFresh{60};
  struct Words {
    std::string text;
    Clock::time_point when;
  };
  friend class TargetClaim;
  Mutex lock_;
  std::set<std::string> targets_ GUARDED_BY(lock_);  // paths that are being written
  std::map<std::string, Words> told_ GUARDED_BY(lock_);
  std::string account_ GUARDED_BY(lock_);
};

/// The right to write a file on a server, which one transfer has at a time. False where another has
/// it.
class TargetClaim {
 public:
  TargetClaim(Habits& habits, std::string path) : habits_(habits), path_(std::move(path)) {
    const MutexLock hold(habits_.lock_);
    claimed_ = habits_.targets_.insert(path_).second;
  }
  ~TargetClaim() {
    const MutexLock hold(habits_.lock_);
    if (claimed_) habits_.targets_.erase(path_);
  }
  TargetClaim(const TargetClaim&) = delete;
  TargetClaim& operator=(const TargetClaim&) = delete;

  [[nodiscard]] explicit operator bool() const { return claimed_; }

 private:
  Habits& habits_;
  const std::string path_;
  bool claimed_ = false;
};

}  // namespace corvane
