#include "net/TlsContext.h"

#include <openssl/err.h>
#include <openssl/pem.h>
#include <openssl/pkcs12.h>
#include <openssl/ssl.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include "kit/Mutex.h"

namespace corvane {
namespace {

namespace fs = std::filesystem;

constexpr int kMostTries = 3;

[[noreturn]] void Fail(const Text& why) {
  ERR_clear_error();
  throw TlsContextFailure(why);
}

template <auto kFree>
struct Freer {
  template <typename T>
  void operator()(T* what) const {
    kFree(what);
  }
};
using Bio = std::unique_ptr<BIO, Freer<BIO_free_all>>;
using Certificate509 = std::unique_ptr<X509, Freer<X509_free>>;
using Key = std::unique_ptr<EVP_PKEY, Freer<EVP_PKEY_free>>;

// A certificate with its key, and those that vouch for it.
struct Identity {
  Certificate509 certificate{};
  Key key{};
  std::vector<Certificate509> others{};
};

int GivePassphrase(char* buffer, int size, int /*writes*/, void* passphrase) {
  const auto& text = *static_cast<const std::string*>(passphrase);
  const auto length = std::min(text.size(), static_cast<std::size_t>(size));
  text.copy(buffer, length);
  return static_cast<int>(length);
}

Bio Opened(const std::string& path) {
  Bio file(BIO_new_file(path.c_str(), "rb"));
  if (!file) Fail(Text("The file %1 cannot be read.", path));
  return file;
}

// What a file holds in the form of PEM (RFC 7468).
struct PemParts {
  bool certificate = false;
  bool key = false;
};

PemParts PartsOf(const std::string& path) {
  const Bio file = Opened(path);
  PemParts parts;
  char* name = nullptr;
  char* header = nullptr;
  unsigned char* data = nullptr;
  long length = 0;
  while (PEM_read_bio(file.get(), &name, &header, &data, &length) == 1) {
    const std::string_view label(name);
    parts.certificate = parts.certificate || label.ends_with("CERTIFICATE");
    parts.key = parts.key || label.ends_with("PRIVATE KEY");
    OPENSSL_free(name);
    OPENSSL_free(header);
    OPENSSL_clear_free(data, static_cast<std::size_t>(length));
  }
  ERR_clear_error();
  return parts;
}

// False where the passphrase does not open the key.
bool ReadPem(const std::string& path, std::string passphrase, Identity& identity) {
  Bio file = Opened(path);
  identity.certificate.reset(PEM_read_bio_X509(file.get(), nullptr, nullptr, nullptr));
  while (X509* const other = PEM_read_bio_X509(file.get(), nullptr, nullptr, nullptr))
    identity.others.emplace_back(other);
  file = Opened(path);
  identity.key.reset(PEM_read_bio_PrivateKey(file.get(), nullptr, GivePassphrase, &passphrase));
  return identity.key != nullptr;
}

bool ReadPkcs12(const std::string& path, const std::string& passphrase, Identity& identity) {
  const Bio file = Opened(path);
  const std::unique_ptr<PKCS12, Freer<PKCS12_free>> store(d2i_PKCS12_bio(file.get(), nullptr));
  if (!store) Fail(Text("The file %1 holds no certificate.", path));
  if (PKCS12_verify_mac(store.get(), passphrase.c_str(), -1) != 1) return false;
  X509* certificate = nullptr;
  EVP_PKEY* key = nullptr;
  STACK_OF(X509)* others = nullptr;
  const int parsed = PKCS12_parse(store.get(), passphrase.c_str(), &key, &certificate, &others);
  identity.certificate.reset(certificate);
  identity.key.reset(key);
  for (X509* other = sk_X509_pop(others); other != nullptr; other = sk_X509_pop(others))
    identity.others.emplace_back(other);
  sk_X509_free(others);
  if (parsed != 1 || certificate == nullptr || key == nullptr)
    Fail(Text("The file %1 holds no certificate with its key.", path));
  return true;
}

Identity ReadIdentity(const std::string& path, const TlsContext::AskPassphrase& ask) {
  const PemParts parts = PartsOf(path);
  if (parts.certificate && !parts.key) Fail(Text("The file %1 holds no key.", path));
  std::string passphrase;
  for (int tries = 0;; ++tries) {
    Identity identity;
    const bool read = parts.certificate ? ReadPem(path, passphrase, identity)
                                        : ReadPkcs12(path, passphrase, identity);
    if (read) return identity;
    ERR_clear_error();
    const auto given = tries < kMostTries ? ask() : std::nullopt;
    if (!given) Fail(Text("The key in %1 cannot be opened without its passphrase.", path));
    passphrase = *given;
  }
}

// Certificates are looked up one by one where the system has them by name; reading all of them
// takes 20 ms and a megabyte.
bool HasNames(const char* directory) {
  std::error_code error;
  const fs::directory_iterator entries(directory, error);
  return !error && std::any_of(begin(entries), end(entries), [](const fs::directory_entry& entry) {
    return entry.path().extension() == ".0";
  });
}

// The contexts whose keys are open, for as long as connections use them: nobody is asked for a
// passphrase again meanwhile.
class OpenContexts {
 public:
  static OpenContexts& TheOnes() {
    static OpenContexts all;
    return all;
  }
  [[nodiscard]] std::shared_ptr<const TlsContext> Find(const std::string& name) EXCLUDES(lock_) {
    const MutexLock lock(lock_);
    return contexts_[name].lock();
  }
  void Keep(const std::string& name, const std::shared_ptr<const TlsContext>& context)
      EXCLUDES(lock_) {
    const MutexLock lock(lock_);
    contexts_[name] = context;
  }

 private:
  Mutex lock_;
  std::map<std::string, std::weak_ptr<const TlsContext>> contexts_ GUARDED_BY(lock_);
};

// A file that was written anew is another one.
std::string NameOf(const std::string& path) {
  std::error_code error;
  const auto written = fs::last_write_time(path, error);
  return path + '\n' + std::to_string(written.time_since_epoch().count());
}

void TrustSystem(SSL_CTX* context) {
  const char* directory = std::getenv(X509_get_default_cert_dir_env());
  const char* file = std::getenv(X509_get_default_cert_file_env());
  if (directory == nullptr) directory = X509_get_default_cert_dir();
  const bool byName = HasNames(directory);
  if (byName) SSL_CTX_load_verify_dir(context, directory);
  if (!byName || file != nullptr) SSL_CTX_set_default_verify_file(context);
  ERR_clear_error();
}

}  // namespace

TlsContextFailure::TlsContextFailure(corvane::Text sentence)
    : NLException("TlsContext", sentence.English()), why(std::move(sentence)) {}

void TlsContext::Free::operator()(ssl_ctx_st* context) const {
  SSL_CTX_free(context);
}

// Sessions stay with their connections: with a cache, TLS 1.3's are good for one use only.
TlsContext::TlsContext() : context_(SSL_CTX_new(TLS_client_method())) {
  constexpr std::size_t kReadAhead = std::size_t{256} * 1024;
  if (!context_) Fail(Text("There is no TLS on this machine."));
  SSL_CTX* const context = context_.get();
  SSL_CTX_set_min_proto_version(context, TLS1_2_VERSION);
  SSL_CTX_set_session_cache_mode(context, SSL_SESS_CACHE_OFF);
  SSL_CTX_set_options(context, SSL_OP_NO_RENEGOTIATION);
  SSL_CTX_set_read_ahead(context, 1);
  SSL_CTX_set_default_read_buffer_len(context, kReadAhead);
  TrustSystem(context);
}

std::shared_ptr<const TlsContext> TlsContext::usual() {
  static const std::shared_ptr<const TlsContext> kUsual(new TlsContext);
  return kUsual;
}

std::shared_ptr<const TlsContext> TlsContext::with(const std::string& path,
                                                   const AskPassphrase& ask) {
  const std::string name = NameOf(path);
  if (auto open = OpenContexts::TheOnes().Find(name)) return open;
  std::shared_ptr<TlsContext> made(new TlsContext);
  SSL_CTX* const context = made->get();
  const Identity identity = ReadIdentity(path, ask);
  if (SSL_CTX_use_certificate(context, identity.certificate.get()) != 1 ||
      SSL_CTX_use_PrivateKey(context, identity.key.get()) != 1) {
    Fail(Text("The certificate in %1 cannot be used.", path));
  }
  for (const Certificate509& other : identity.others) SSL_CTX_add1_chain_cert(context, other.get());
  OpenContexts::TheOnes().Keep(name, made);
  return made;
}

}  // namespace corvane
