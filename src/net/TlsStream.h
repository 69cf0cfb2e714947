#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>

#include "net/NLException.h"
#include "net/Stream.h"
#include "net/TlsContext.h"
#include "util/Certificate.h"

struct bio_st;
struct bio_method_st;
struct ssl_st;
struct x509_store_ctx_st;

namespace corvane {

/// A stream that encrypts another one: TLS as a client (RFC 8446, RFC 5246). Threads and failures
/// as for any Stream; its own failures are NLExceptions whose message names the reason.
class TlsStream final : public Stream {
 public:
  /// `below` is not owned. Nothing is sent yet.
  TlsStream(std::shared_ptr<const TlsContext> context, Stream& below);
  ~TlsStream() override;
  TlsStream(const TlsStream&) = delete;
  TlsStream& operator=(const TlsStream&) = delete;

  /// Agrees with the server `host`, a name or an address, on keys; a certificate that does
  /// not fit is taken all the same and says so. `session` is a stream to the same server whose
  /// session is to be resumed, or null. Asks `goOn` a few times a second; false where that said no.
  /// Throws where it fails or takes longer than so many milliseconds.
  [[nodiscard]] bool handshake(const std::string& host, const TlsStream* session, long milliseconds,
                               const std::function<bool()>& goOn);

  // After the handshake.
  [[nodiscard]] const std::shared_ptr<const TlsContext>& context() const { return context_; }
  [[nodiscard]] const std::string& host() const { return host_; }
  [[nodiscard]] const Certificate& certificate() const { return certificate_; }
  [[nodiscard]] std::string protocol() const;  ///< "TLS 1.3"
  [[nodiscard]] std::string cipher() const;
  [[nodiscard]] bool isResumed() const;
  /// Whether the peer went without saying that nothing more comes: what was read may be cut.
  [[nodiscard]] bool wasCut() const { return end_ == End::Cut; }

  [[nodiscard]] std::size_t read(std::span<char> buffer) override;
  void write(std::span<const char> bytes) override;
  [[nodiscard]] bool wait(long milliseconds) override;
  /// Says that nothing more comes and ends the sending half below; then waits a moment for the
  /// peer's end, for a socket that is closed with bytes unread resets what the peer has not read.
  void finish() override;
  void abort() override { below_.abort(); }
  /// Says that nothing more comes, where the connection is sound.
  void sayEnd();

  /// Whether something between the two ends, as a proxy, may end both halves where one ends:
  /// finish() then lets what is on its way arrive before it ends the half below.
  bool endsTogether = false;

 private:
  enum class End { Open, Ended, Cut, Failed };
  struct Free {
    void operator()(ssl_st* ssl) const;
  };

  static const bio_method_st* method();
  static int readBelow(bio_st* bio, char* buffer, std::size_t size, std::size_t* got);
  static int writeBelow(bio_st* bio, const char* bytes, std::size_t size, std::size_t* written);
  static long control(bio_st* bio, int command, long number, void* pointer);
  static int noteProblem(int fits, x509_store_ctx_st* chain);

  void expect(const std::string& host);
  /// Carries out one call of OpenSSL; true where it succeeded. Otherwise `end_` says whether there
  /// is an end, and a failure is thrown as `function`'s; with neither it wants to read.
  [[nodiscard]] bool carryOut(const char* function, const std::function<int()>& call);
  [[nodiscard]] std::size_t readOnce(std::span<char> buffer);
  void flush();
  void drain(long patience);
  [[nodiscard]] NLException failure(const char* function) const;

  const std::shared_ptr<const TlsContext> context_;
  Stream& below_;
  std::unique_ptr<ssl_st, Free> ssl_;
  std::string host_;  // that was to be met
  Certificate certificate_;
  bool patient_ = true;  // bytes from below are waited for
  bool endBelow_ = false;
  bool saidEnd_ = false;
  End end_ = End::Open;
  std::string out_;                     // encrypted, and not written below yet
  std::optional<NLException> failure_;  // of the stream below, or the one that ended this
};

}  // namespace corvane
