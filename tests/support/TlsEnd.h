#pragma once

#include <memory>
#include <string>
#include <string_view>

struct ssl_ctx_st;
struct ssl_st;

namespace corvane {

/// A certificate for tests with its key, made anew.
struct TestIdentity {
  std::string host = "127.0.0.1";  ///< a name or an IPv4 address
  bool signedByAuthority = false;  ///< by the one that TrustTestAuthority makes known, else itself
  bool expired = false;
  bool wantsCertificate = false;  ///< of the client, signed by that authority
};

/// Makes this process trust the authority of tests; to be called before it first encrypts.
void TrustTestAuthority();

/// A client's certificate, signed by that authority, and its key in a file.
enum class KeyFile { Pem, LockedPem, Pkcs12, NoKey };
void WriteClientCertificate(const std::string& path, KeyFile form, const std::string& passphrase);

/// The server's side of TLS with one identity, for as many connections as there are.
class TlsServer {
 public:
  explicit TlsServer(const TestIdentity& identity);
  [[nodiscard]] ssl_ctx_st* Context() const { return context_.get(); }

 private:
  std::shared_ptr<ssl_ctx_st> context_;
};

/// The server's end of one encrypted connection. Knows no sockets: what comes from the wire is fed,
/// and what goes there is handed out.
class TlsEnd {
 public:
  explicit TlsEnd(const TlsServer& server);

  /// Takes what came from the wire.
  void Feed(std::string_view bytes);
  /// Goes on with the handshake; true once it is done.
  bool Shake();
  /// What was decrypted since.
  [[nodiscard]] std::string Open();
  /// Encrypts.
  void Seal(std::string_view plain);
  /// Says that nothing more comes.
  void SayEnd();
  /// What goes to the wire.
  [[nodiscard]] std::string Wire();

 private:
  std::shared_ptr<ssl_st> ssl_;
};

}  // namespace corvane
