#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "kit/Mutex.h"
#include "remote/ServerTrust.h"
#include "util/Certificate.h"

namespace corvane {

/// A question that a session puts to its user, with the answer to come. Shared by the session,
/// which waits for the answer, and the window that asks. Any thread.
class UserQuestion {
 public:
  enum class Kind {
    UnknownCertificate,  ///< nobody whom this machine trusts vouches for the server
    ChangedCertificate,  ///< nor is it the certificate that the user trusts
    NoMoreEncryption,    ///< the server was encrypted once and no longer offers it
    PlainPassword,       ///< the password would go unencrypted
    Passphrase,          ///< of the client certificate's key; the answer has a text
    Account,             ///< which the server wants besides the password; the answer has a text
  };
  struct Subject {
    Kind kind = Kind::UnknownCertificate;
    std::string host{};
    std::uint16_t port = 21;
    std::string user{};
    Certificate certificate{};                ///< the one that the server shows
    std::optional<KnownCertificate> known{};  ///< the one that the user trusts
    std::string file{};                       ///< of the client certificate
  };
  enum class Answer { No, Once, Always };

  explicit UserQuestion(Subject subject) : subject_(std::move(subject)) {}

  [[nodiscard]] const Subject& About() const { return subject_; }

  /// Waits for the answer, asking `goOn` a few times a second; where that says no the question is
  /// withdrawn and the answer is No.
  [[nodiscard]] Answer Wait(const std::function<bool()>& goOn) EXCLUDES(lock_);
  /// The text that came with the answer.
  [[nodiscard]] std::string Text() const EXCLUDES(lock_);

  /// The first answer counts.
  void Give(Answer answer, std::string text = {}) EXCLUDES(lock_);
  /// `then` is called once the question has its answer or is withdrawn, at once where that is so;
  /// on whatever thread that happens.
  void WhenOver(std::function<void()> then) EXCLUDES(lock_);

 private:
  const Subject subject_;
  mutable Mutex lock_;
  Condition changed_;
  std::optional<Answer> answer_ GUARDED_BY(lock_);
  std::string text_ GUARDED_BY(lock_);
  std::function<void()> whenOver_ GUARDED_BY(lock_);
};

}  // namespace corvane
