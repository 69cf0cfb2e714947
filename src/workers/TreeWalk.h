#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "kit/Mutex.h"
#include "remote/OwnerUi.h"
#include "remote/RemoteSession.h"
#include "remote/Site.h"
#include "workers/MThread.h"
#include "workers/Refusals.h"
#include "workers/SessionPool.h"
#include "workers/TreeBounds.h"
#include "workers/WalkLine.h"
#include "workers/WalkUi.h"

namespace corvane {

/// Base of those who go through the directories below some of a server's, breadth first and on
/// several connections at once where there are. Links are never entered, nor is a directory twice.
/// What the server refuses is noted, and the rest goes on. Own thread; Cancel from any.
///
/// The first piece of work is done on the window's session where that is free, so that little needs
/// no login; as soon as another connection stands the window has its own for itself again.
class TreeWalk : public MThread {
 public:
  /// On what it walks.
  struct Ways {
    Site site;
    std::shared_ptr<SessionPool> pool;
    std::shared_ptr<RemoteSession> session;  ///< the window's; or null
    std::shared_ptr<OwnerUi> window;         ///< is asked what sessions ask
    int connections = 1;                     ///< so many of the pool at most
  };
  TreeWalk(Ways ways, std::shared_ptr<WalkUi> ui);

  void Cancel() override;

  TreeBounds limits;  ///< before Run

 protected:
  struct Directory {
    std::string path;
    std::size_t depth = 0;
    bool chosen = false;   ///< by its path, wherever the server says that it stands
    std::string listed{};  ///< for Take: the path by which it was added
  };

  /// Comes before everything; directories to begin with are added here. Anew after a loss.
  virtual Outcome First(RemoteSession& session) = 0;
  /// What a directory holds, on the thread of its connection. Anew after a loss.
  virtual Outcome Take(RemoteSession& session, const Directory& directory,
                       const std::vector<RemoteEntry>& entries) = 0;
  /// Comes when every directory was looked at. Anew after a loss.
  virtual Outcome Last(RemoteSession& /*session*/) { return {}; }

  /// To be looked at later; those that First adds count once it is Done.
  void Add(Directory directory) EXCLUDES(lock_);
  /// Something was refused, `entries` of them for one reason; the user sees the path from `base`
  /// on.
  void Refuse(const std::string& path, const Text& why, std::size_t entries = 1) EXCLUDES(lock_);
  /// Ends the walk before its time; the first reason counts.
  void EndAt(const Text& bound) EXCLUDES(lock_);
  /// Ends the walk as failed.
  void Fail(const Outcome& outcome) EXCLUDES(lock_);
  [[nodiscard]] WalkUi& Ui() { return *ui_; }

  std::string base;  ///< before Run

  std::int32_t Execute() final;

 private:
  struct Unit {
    enum class Kind { First, Directory, Last } kind = Kind::First;
    Directory directory{};
    int tries = 0;
  };

  /// Starts another line where that is worth it; false once no line is left and none is to come.
  [[nodiscard]] bool KeepLines() EXCLUDES(lock_);
  /// On the window's session, or on one of the pool; null where there is none.
  [[nodiscard]] std::shared_ptr<WalkLine> NewLine(bool windows) EXCLUDES(lock_);
  [[nodiscard]] bool IsWorthIt() REQUIRES(lock_);
  void Start(const std::shared_ptr<WalkLine>& line) EXCLUDES(lock_);
  void Work(const std::shared_ptr<WalkLine>& line) EXCLUDES(lock_);
  /// Whether the window gets its session back.
  [[nodiscard]] bool Leaves(const WalkLine& line) EXCLUDES(lock_);
  [[nodiscard]] std::optional<Unit> Next() EXCLUDES(lock_);
  Outcome Carry(RemoteSession& session, const Unit& unit);
  Outcome Look(RemoteSession& session, const Directory& directory) EXCLUDES(lock_);
  Outcome List(RemoteSession& session, const Directory& directory, const std::string& where);
  /// Whether the line goes on.
  [[nodiscard]] bool Settle(Unit unit, Outcome outcome, const WalkLine& line) EXCLUDES(lock_);
  void Note(const std::string& path, const Text& why, std::size_t entries = 1) REQUIRES(lock_);
  void End(const Outcome& outcome) REQUIRES(lock_);
  [[nodiscard]] bool IsOver() REQUIRES(lock_) { return over_ || Cancelled(); }

  const Ways ways_;
  const std::shared_ptr<WalkUi> ui_;
  const std::shared_ptr<OwnerUi> owner_;
  std::atomic<std::int64_t> seen_{0};
  Mutex lock_;
  Condition changed_;
  Condition left_;  // a line has ended
  std::deque<Unit> waiting_ GUARDED_BY(lock_);
  std::vector<Directory> begin_ GUARDED_BY(lock_);  // what First adds
  std::set<std::string> entered_ GUARDED_BY(lock_);
  std::vector<std::shared_ptr<WalkLine>> lines_ GUARDED_BY(lock_);
  int working_ GUARDED_BY(lock_) = 0;       // pieces of work that are being carried out
  int failures_ GUARDED_BY(lock_) = 0;      // to connect or to look, one after another
  bool windows_ GUARDED_BY(lock_);          // the next line is to be the window's
  bool borrows_ GUARDED_BY(lock_) = false;  // or has, the window's session
  bool full_ GUARDED_BY(lock_) = false;     // no more connections than there are
  bool begun_ GUARDED_BY(lock_) = false;    // First is done
  bool lastGiven_ GUARDED_BY(lock_) = false;
  bool over_ GUARDED_BY(lock_) = false;
  Outcome outcome_ GUARDED_BY(lock_);
  Text bound_ GUARDED_BY(lock_);
  Refusals refusals_ GUARDED_BY(lock_);
};

}  // namespace corvane
