#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "kit/Text.h"
#include "net/NLException.h"

struct ssl_ctx_st;

namespace corvane {

/// Why there is no context.
struct TlsContextFailure : NLException {
  explicit TlsContextFailure(corvane::Text sentence);

  corvane::Text why;  ///< the message as a sentence for the user
};

/// What TLS connections share: the certificates that this machine trusts, the one that it shows
/// itself, and TLS 1.2 as the least. Any thread.
class TlsContext {
 public:
  /// Asks for the passphrase of a key; nothing where the user has none to give. A second call
  /// means that the first one was wrong.
  using AskPassphrase = std::function<std::optional<std::string>()>;

  /// The context of connections that show no certificate; made once. Throws TlsContextFailure.
  [[nodiscard]] static std::shared_ptr<const TlsContext> usual();
  /// One that shows the certificate of a PEM or PKCS#12 file, with its key. Reads the file. Throws
  /// TlsContextFailure with what is wrong with it.
  [[nodiscard]] static std::shared_ptr<const TlsContext> with(const std::string& path,
                                                              const AskPassphrase& ask);

  /// For TlsStream.
  [[nodiscard]] ssl_ctx_st* get() const { return context_.get(); }

 private:
  struct Free {
    void operator()(ssl_ctx_st* context) const;
  };
  TlsContext();

  std::unique_ptr<ssl_ctx_st, Free> context_;
};

}  // namespace corvane
