#include "workers/SessionPool.h"

#include <algorithm>
#include <thread>
#include <utility>

#include "kit/Background.h"

namespace corvane {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds kKeptFor(5);

}  // namespace

/// Whoever works with a session now hears of it; while it is kept nobody does.
class SessionPool::Owner final : public OwnerUi {
 public:
  void Set(std::shared_ptr<OwnerUi> owner) {
    const MutexLock hold(lock_);
    owner_ = std::move(owner);
  }

  bool PostMessage(Message message) override {
    const auto owner = Now();
    return owner && owner->PostMessage(std::move(message));
  }
  bool PlaySound(Sound sound) override {
    const auto owner = Now();
    return owner && owner->PlaySound(sound);
  }
  bool SetStatus(const Text& text) override {
    const auto owner = Now();
    return owner && owner->SetStatus(text);
  }
  bool ShowStep(const ConnectStep& step) override {
    const auto owner = Now();
    return owner && owner->ShowStep(step);
  }
  bool ShowProtection(const Protection& protection) override {
    const auto owner = Now();
    return owner && owner->ShowProtection(protection);
  }
  bool Ask(const std::shared_ptr<UserQuestion>& question) override {
    const auto owner = Now();
    return owner ? owner->Ask(question) : OwnerUi::Ask(question);
  }
  bool AppendLog(std::string_view line) override {
    const auto owner = Now();
    return owner && owner->AppendLog(line);
  }

 private:
  std::shared_ptr<OwnerUi> Now() {
    const MutexLock hold(lock_);
    return owner_;
  }

  Mutex lock_;
  std::shared_ptr<OwnerUi> owner_ GUARDED_BY(lock_);
};

struct SessionPool::Kept {
  Site site;
  std::shared_ptr<RemoteSession> session;
  std::shared_ptr<Owner> owner;
  Clock::time_point until;
};

struct SessionPool::Server {
  int used = 0;
  std::vector<Kept> kept;
  std::shared_ptr<Habits> habits = std::make_shared<Habits>();
};

SessionPool::SessionPool(Make make) : make_(std::move(make)) {}

SessionPool::~SessionPool() {
  Close();
}

std::string SessionPool::ServerOf(const Site& site) {
  return site.user + "@" + site.host + ":" + std::to_string(site.port);
}

SessionPool::Server& SessionPool::At(const std::string& name) {
  std::unique_ptr<Server>& server = servers_[name];
  if (!server) server = std::make_unique<Server>();
  return *server;
}

std::shared_ptr<Habits> SessionPool::HabitsOf(const Site& site) {
  const MutexLock hold(lock_);
  return At(ServerOf(site)).habits;
}

SessionPool::Lease SessionPool::Take(const Site& site, std::shared_ptr<OwnerUi> owner, int most) {
  const std::string name = ServerOf(site);
  std::shared_ptr<RemoteSession> session;
  std::shared_ptr<Owner> heard;
  std::shared_ptr<Habits> habits;
  {
    const MutexLock hold(lock_);
    Server& server = At(name);
    habits = server.habits;
    const int taken = habits->mostConnections;
    if (server.used >= (taken > 0 ? std::min(taken, most) : most)) return {};
    ++server.used;
    const auto kept = std::ranges::find(server.kept, site, &Kept::site);
    if (kept != server.kept.end()) {
      session = std::move(kept->session);
      heard = std::move(kept->owner);
      server.kept.erase(kept);
    }
  }
  if (!session) {
    heard = std::make_shared<Owner>();
    session = make_(site, heard, habits);
  }
  heard->Set(std::move(owner));
  return {shared_from_this(), site, std::move(session), std::move(heard)};
}

void SessionPool::Full(const Site& site) {
  const MutexLock hold(lock_);
  const Server& server = At(ServerOf(site));
  server.habits->mostConnections = std::max(1, server.used);
}

int SessionPool::Used(const Site& site) {
  const MutexLock hold(lock_);
  return At(ServerOf(site)).used;
}

void SessionPool::Return(const Site& site, std::shared_ptr<RemoteSession> session,
                         const std::shared_ptr<Owner>& owner) {
  owner->Set(nullptr);
  const bool good = session->IsAlive();
  {
    const MutexLock hold(lock_);
    Server& server = At(ServerOf(site));
    --server.used;
    if (good && !closed_) {
      server.kept.push_back({site, session, owner, Clock::now() + kKeptFor});
      session.reset();
      if (!std::exchange(clearing_, true)) ClearLater();
    }
  }
  if (session) session->Close();
}

// Looks now and then, so that it ends soon after the pool.
void SessionPool::ClearLater() {
  const bool runs = Background::Start("sessions", [pool = weak_from_this()] {
    for (;;) {
      std::this_thread::sleep_for(std::chrono::milliseconds(100));
      const std::shared_ptr<SessionPool> self = pool.lock();
      if (!self || !self->Clear()) return;
    }
  });
  if (!runs) clearing_ = false;
}

// Says good-bye on what was kept long enough; whether anything is kept still.
bool SessionPool::Clear() {
  std::vector<Kept> over;
  bool any = false;
  {
    const MutexLock hold(lock_);
    for (auto& [name, server] : servers_) {
      auto& kept = server->kept;
      const auto late =
          std::stable_partition(kept.begin(), kept.end(),
                                [now = Clock::now()](const Kept& one) { return one.until > now; });
      std::move(late, kept.end(), std::back_inserter(over));
      kept.erase(late, kept.end());
      any = any || !kept.empty();
    }
    clearing_ = any;
  }
  for (const Kept& one : over) {
    one.session->Quit();
    one.session->Close();
  }
  return any;
}

void SessionPool::Close() {
  {
    const MutexLock hold(lock_);
    closed_ = true;
  }
  EndKept();
}

void SessionPool::EndKept() {
  std::vector<Kept> over;
  {
    const MutexLock hold(lock_);
    for (auto& [name, server] : servers_) {
      std::ranges::move(server->kept, std::back_inserter(over));
      server->kept.clear();
    }
  }
  for (const Kept& one : over) one.session->Close();
}

SessionPool::Lease::Lease(std::shared_ptr<SessionPool> pool, Site site,
                          std::shared_ptr<RemoteSession> session, std::shared_ptr<Owner> owner)
    : pool_(std::move(pool)),
      site_(std::move(site)),
      session_(std::move(session)),
      owner_(std::move(owner)) {}

SessionPool::Lease& SessionPool::Lease::operator=(Lease&& other) noexcept {
  GiveBack();
  pool_ = std::move(other.pool_);
  site_ = std::move(other.site_);
  session_ = std::move(other.session_);
  owner_ = std::move(other.owner_);
  return *this;
}

void SessionPool::Lease::GiveBack() {
  if (!session_) return;
  pool_->Return(site_, std::move(session_), owner_);
  owner_.reset();
  pool_.reset();
}

}  // namespace corvane
