#pragma once

#include <map>
#include <string>

#include "kit/Mutex.h"
#include "sites/SecretStore.h"

namespace corvane {

/// A secret store in memory that can be locked, or not run at all. Whoever asks to unlock it is
/// refused.
class FakeSecretStore final : public SecretStore {
 public:
  Result Lookup(const SecretKey& key, Prompt prompt, std::string& secret) override {
    const MutexLock hold(lock_);
    if (const Result result = State(prompt); result != Result::Done) return result;
    const auto found = secrets_.find(key);
    if (found == secrets_.end()) return Result::Missing;
    secret = found->second;
    return Result::Done;
  }
  Result Save(const SecretKey& key, const std::string& secret, Prompt prompt) override {
    const MutexLock hold(lock_);
    if (const Result result = State(prompt); result != Result::Done) return result;
    secrets_[key] = secret;
    return Result::Done;
  }
  Result Remove(const SecretKey& key, Prompt prompt) override {
    const MutexLock hold(lock_);
    if (const Result result = State(prompt); result != Result::Done) return result;
    return secrets_.erase(key) == 1 ? Result::Done : Result::Missing;
  }

  void Become(Result state) {
    const MutexLock hold(lock_);
    state_ = state;
  }
  /// "user@host:port=secret " of all, in order.
  [[nodiscard]] std::string All() {
    const MutexLock hold(lock_);
    std::string text;
    for (const auto& [key, secret] : secrets_) {
      text += key.user + "@" + key.host + ":" + std::to_string(key.port) + "=" + secret + " ";
    }
    return text;
  }
  /// How often it was used.
  [[nodiscard]] int Calls() {
    const MutexLock hold(lock_);
    return calls_;
  }
  /// How often somebody wanted the user to unlock it.
  [[nodiscard]] int Prompts() {
    const MutexLock hold(lock_);
    return prompts_;
  }

 private:
  Result State(Prompt prompt) REQUIRES(lock_) {
    ++calls_;
    if (state_ == Result::Locked && prompt == Prompt::Allowed) ++prompts_;
    return state_;
  }

  Mutex lock_;
  std::map<SecretKey, std::string> secrets_ GUARDED_BY(lock_);
  Result state_ GUARDED_BY(lock_) = Result::Done;
  int calls_ GUARDED_BY(lock_) = 0;
  int prompts_ GUARDED_BY(lock_) = 0;
};

}  // namespace corvane
