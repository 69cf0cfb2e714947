#include "net/ConnectRace.h"

#include <poll.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <utility>

namespace corvane {
namespace {

constexpr std::chrono::milliseconds kHeadStart(250);  // RFC 8305, 5

std::vector<NLAddress> Alternating(std::span<const NLAddress> addresses) {
  std::vector<NLAddress> order(addresses.begin(), addresses.end());
  if (order.empty()) return order;
  const int first = order.front().family();
  const auto isFirst = [first](const NLAddress& address) { return address.family() == first; };
  const auto middle = std::stable_partition(order.begin(), order.end(), isFirst);
  std::vector<NLAddress> mixed;
  auto one = order.begin();
  auto other = middle;
  while (one != middle || other != order.end()) {
    if (one != middle) mixed.push_back(*one++);
    if (other != order.end()) mixed.push_back(*other++);
  }
  return mixed;
}

// How much an error says about the server rather than about this machine.
int Weight(int error) {
  switch (error) {
    case EADDRNOTAVAIL:
    case EAFNOSUPPORT:
    case EHOSTUNREACH:
    case ENETUNREACH: return 0;
    case ECONNREFUSED: return 1;
    default: return 2;
  }
}

}  // namespace

ConnectRace::ConnectRace(std::span<const NLAddress> addresses, int type,
                         std::chrono::milliseconds limit)
    : type_(type), limit_(limit), addresses_(Alternating(addresses)), error_(EADDRNOTAVAIL) {}

bool ConnectRace::step(std::chrono::milliseconds most) {
  const bool due = runners_.empty() || Clock::now() >= nextStart_;
  if (due && next_ < addresses_.size()) {
    nextStart_ = Clock::now() + kHeadStart;
    start(addresses_[next_++]);
  }
  if (!winner_ && !runners_.empty()) await(most);
  return winner_ || (runners_.empty() && next_ == addresses_.size());
}

void ConnectRace::start(const NLAddress& address) {
  UniqueFd socket(::socket(address.family(), type_ | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
  sockaddr_storage target{};
  address.get(target);
  const auto* plain = reinterpret_cast<const sockaddr*>(&target);
  if (!socket) return fail(errno);
  if (::connect(socket.get(), plain, address.length()) == 0) {
    winner_ = std::move(socket);
    return;
  }
  if (errno != EINPROGRESS && errno != EINTR) return fail(errno);
  runners_.push_back({std::move(socket), Clock::now() + limit_});
}

void ConnectRace::await(std::chrono::milliseconds most) {
  using std::chrono::milliseconds;
  if (next_ < addresses_.size()) {
    most = std::min(most, std::chrono::ceil<milliseconds>(nextStart_ - Clock::now()));
  }
  std::vector<pollfd> waits;
  for (const Runner& runner : runners_) waits.push_back({runner.socket.get(), POLLOUT, 0});
  const auto wait = static_cast<int>(std::max(most, milliseconds(0)).count());
  if (::poll(waits.data(), waits.size(), wait) < 0) return;
  std::size_t index = 0;
  std::erase_if(runners_,
                [&](Runner& runner) { return judge(runner, waits[index++].revents != 0); });
}

bool ConnectRace::judge(Runner& runner, bool ready) {
  if (!ready && Clock::now() < runner.deadline) return false;
  int error = ready ? 0 : ETIMEDOUT;
  socklen_t length = sizeof error;
  if (ready) ::getsockopt(runner.socket.get(), SOL_SOCKET, SO_ERROR, &error, &length);
  if (error != 0) {
    fail(error);
  } else if (!winner_) {
    winner_ = std::move(runner.socket);
  }
  return true;
}

// The next address need not wait any longer.
void ConnectRace::fail(int error) {
  if (Weight(error) >= Weight(error_)) error_ = error;
  nextStart_ = Clock::now();
}

}  // namespace corvane
