#pragma once

#include <chrono>
#include <functional>
#include <string>

#include "sites/SecretStore.h"

namespace corvane {

/// The secret store of the desktop session, reached over its bus (org.freedesktop.secrets). Each
/// call runs on a thread of its own; one that does not end in time is left behind, for a prompt
/// that nobody closes never ends. Any thread.
class LibSecretStore final : public SecretStore {
 public:
  struct Deadlines {
    std::chrono::milliseconds usual{5'000};
    std::chrono::milliseconds prompted{60'000};  ///< where the user may be asked to unlock it
  };

  LibSecretStore() = default;
  explicit LibSecretStore(Deadlines deadlines) : deadlines_(deadlines) {}

  [[nodiscard]] Result Lookup(const SecretKey& key, Prompt prompt, std::string& secret) override;
  [[nodiscard]] Result Save(const SecretKey& key, const std::string& secret,
                            Prompt prompt) override;
  [[nodiscard]] Result Remove(const SecretKey& key, Prompt prompt) override;

 private:
  /// What a call to the store gives back.
  struct Answer {
    Result result = Result::Failed;
    std::string secret;
  };

  [[nodiscard]] Answer InTime(Prompt prompt, std::function<Answer()> ask) const;

  Deadlines deadlines_;
};

}  // namespace corvane
