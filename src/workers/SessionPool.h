#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "kit/Mutex.h"
#include "remote/Habits.h"
#include "remote/OwnerUi.h"
#include "remote/RemoteSession.h"
#include "remote/Site.h"

namespace corvane {

/// Sessions of transfers: makes them, counts them for each server, and keeps those that are let go
/// of for a moment, so that the next transfer need not log in. Any thread; shared by all transfers.
class SessionPool : public std::enable_shared_from_this<SessionPool> {
 public:
  using Make = std::function<std::shared_ptr<RemoteSession>(
      const Site& site, std::shared_ptr<OwnerUi> owner, std::shared_ptr<Habits> habits)>;

  explicit SessionPool(Make make);
  ~SessionPool();
  SessionPool(const SessionPool&) = delete;
  SessionPool& operator=(const SessionPool&) = delete;

  class Owner;
  /// A session in somebody's hands. Let go of, it goes back; one whose connection is gone is
  /// forgotten.
  class Lease {
   public:
    Lease() = default;
    Lease(std::shared_ptr<SessionPool> pool, Site site, std::shared_ptr<RemoteSession> session,
          std::shared_ptr<Owner> owner);
    Lease(Lease&& other) noexcept = default;
    Lease(const Lease&) = delete;
    Lease& operator=(const Lease&) = delete;
    Lease& operator=(Lease&& other) noexcept;
    ~Lease() { GiveBack(); }

    [[nodiscard]] explicit operator bool() const { return session_ != nullptr; }
    [[nodiscard]] const std::shared_ptr<RemoteSession>& Session() const { return session_; }
    void GiveBack();

   private:
    std::shared_ptr<SessionPool> pool_;
    Site site_;
    std::shared_ptr<RemoteSession> session_;
    std::shared_ptr<Owner> owner_;
  };

  /// A session with that site for `owner`, which is to be connected where it is not alive; nothing
  /// where `most` are in use, or as many as the server takes.
  [[nodiscard]] Lease Take(const Site& site, std::shared_ptr<OwnerUi> owner, int most)
      EXCLUDES(lock_);
  /// What was learned of that server.
  [[nodiscard]] std::shared_ptr<Habits> HabitsOf(const Site& site) EXCLUDES(lock_);
  /// The server turned a connection away, which is no longer in use: as many as are now are its
  /// limit.
  void Full(const Site& site) EXCLUDES(lock_);
  /// How many sessions with that server are in use.
  [[nodiscard]] int Used(const Site& site) EXCLUDES(lock_);
  /// Ends what is kept: the network may be another one by now.
  void EndKept() EXCLUDES(lock_);
  /// Ends what is kept. Nothing is kept from then on.
  void Close() EXCLUDES(lock_);

  /// Rows of one server have one name: user, host and port.
  [[nodiscard]] static std::string ServerOf(const Site& site);

 private:
  struct Kept;
  struct Server;
  [[nodiscard]] Server& At(const std::string& name) REQUIRES(lock_);
  void Return(const Site& site, std::shared_ptr<RemoteSession> session,
              const std::shared_ptr<Owner>& owner) EXCLUDES(lock_);
  void ClearLater() REQUIRES(lock_);
  bool Clear() EXCLUDES(lock_);

  const Make make_;
  Mutex lock_;
  std::map<std::string, std::unique_ptr<Server>> servers_ GUARDED_BY(lock_);
  bool closed_ GUARDED_BY(lock_) = false;
  bool clearing_ GUARDED_BY(lock_) = false;
};

}  // namespace corvane
