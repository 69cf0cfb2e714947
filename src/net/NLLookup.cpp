#include "net/NLLookup.h"

#include <arpa/inet.h>

#include <optional>
#include <system_error>
#include <thread>
#include <utility>

#include "kit/Mutex.h"
#include "net/HostName.h"
#include "net/NLException.h"

namespace corvane {

struct NLLookup::State {
  Mutex lock;
  Condition changed;
  bool cancelled GUARDED_BY(lock) = false;
  bool done GUARDED_BY(lock) = false;
  std::vector<NLAddress> addresses GUARDED_BY(lock);
  std::optional<NLException> failure GUARDED_BY(lock);
};

NLLookup::NLLookup(const std::string& host, std::uint16_t port)
    : state_(std::make_shared<State>()) {
  const auto lookUp = [state = state_, host, port] {
    std::vector<NLAddress> addresses;
    std::optional<NLException> failure;
    try {
      addresses = NLAddress::all(host, port);
    } catch (const NLException& exception) {
      failure = exception;
    }
    const MutexLock lock(state->lock);
    state->addresses = std::move(addresses);
    state->failure = failure;
    state->done = true;
    state->changed.NotifyAll();
  };
  if (isAddress(host)) {  // there is nobody to wait for
    lookUp();
    return;
  }
  // Not counted by Background: the end of the process does not wait for a resolver that hangs.
  try {
    std::thread(lookUp).detach();
  } catch (const std::system_error& error) {
    throw NLException("NLLookup::NLLookup", error.code().message());
  }
}

std::vector<NLAddress> NLLookup::get() {
  State& state = *state_;
  const MutexLock lock(state.lock);
  while (!state.done && !state.cancelled) state.changed.Wait(state.lock);
  if (state.cancelled) throw NLException("NLLookup::get", "Lookup cancelled");
  if (state.failure) throw NLException(*state.failure);
  return state.addresses;
}

void NLLookup::cancel() {
  const MutexLock lock(state_->lock);
  state_->cancelled = true;
  state_->changed.NotifyAll();
}

}  // namespace corvane
