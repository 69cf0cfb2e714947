#include "support/TlsEnd.h"

#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/pkcs12.h>
#include <openssl/ssl.h>
#include <openssl/x509v3.h>

#include <array>
#include <atomic>
#include <cstdlib>

#include "support/TemporaryDirectory.h"

namespace corvane {
namespace {

struct Identity {
  std::shared_ptr<EVP_PKEY> key{EVP_EC_gen("P-256"), EVP_PKEY_free};
  std::shared_ptr<X509> certificate{X509_new(), X509_free};
};

void Extend(X509* certificate, int which, const std::string& value) {
  X509_EXTENSION* const extension = X509V3_EXT_conf_nid(nullptr, nullptr, which, value.c_str());
  X509_add_ext(certificate, extension, -1);
  X509_EXTENSION_free(extension);
}

Identity Made(const std::string& name, bool expired, const Identity* authority) {
  constexpr long kDay = 86'400;
  static std::atomic<long> serial{1};
  Identity made;
  X509* const it = made.certificate.get();
  X509_set_version(it, X509_VERSION_3);
  ASN1_INTEGER_set(X509_get_serialNumber(it), ++serial);
  X509_gmtime_adj(X509_getm_notBefore(it), -10 * kDay);
  X509_gmtime_adj(X509_getm_notAfter(it), expired ? -kDay : kDay);
  X509_set_pubkey(it, made.key.get());
  const auto* const text = reinterpret_cast<const unsigned char*>(name.c_str());
  X509_NAME_add_entry_by_txt(X509_get_subject_name(it), "CN", MBSTRING_UTF8, text, -1, -1, 0);
  const Identity& by = authority != nullptr ? *authority : made;
  X509_set_issuer_name(it, X509_get_subject_name(by.certificate.get()));
  const bool address = name.find_first_not_of("0123456789.") == std::string::npos;
  Extend(it, NID_subject_alt_name, (address ? "IP:" : "DNS:") + name);
  if (name == "Test Authority") Extend(it, NID_basic_constraints, "critical,CA:TRUE");
  X509_sign(it, by.key.get(), EVP_sha256());
  return made;
}

const Identity& Authority() {
  static const Identity kAuthority = Made("Test Authority", false, nullptr);
  return kAuthority;
}

}  // namespace

void TrustTestAuthority() {
  static const TemporaryDirectory kFolder;
  const std::string path = kFolder.Path() / "authority.pem";
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "w"),
                                                             std::fclose);
  PEM_write_X509(file.get(), Authority().certificate.get());
  ::setenv("SSL_CERT_FILE", path.c_str(), 1);
}

void WriteClientCertificate(const std::string& path, KeyFile form, const std::string& passphrase) {
  const Identity made = Made("anna", false, &Authority());
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "w"),
                                                             std::fclose);
  if (form == KeyFile::Pkcs12) {
    const std::shared_ptr<PKCS12> store(
        PKCS12_create(passphrase.c_str(), "anna", made.key.get(), made.certificate.get(), nullptr,
                      0, 0, 0, 0, 0),
        PKCS12_free);
    i2d_PKCS12_fp(file.get(), store.get());
    return;
  }
  PEM_write_X509(file.get(), made.certificate.get());
  if (form == KeyFile::NoKey) return;
  const auto* const bytes = reinterpret_cast<const unsigned char*>(passphrase.data());
  const bool locked = form == KeyFile::LockedPem;
  PEM_write_PrivateKey(file.get(), made.key.get(), locked ? EVP_aes_128_cbc() : nullptr,
                       locked ? bytes : nullptr, locked ? static_cast<int>(passphrase.size()) : 0,
                       nullptr, nullptr);
}

TlsServer::TlsServer(const TestIdentity& identity)
    : context_(SSL_CTX_new(TLS_server_method()), SSL_CTX_free) {
  const Identity made =
      Made(identity.host, identity.expired, identity.signedByAuthority ? &Authority() : nullptr);
  SSL_CTX_use_certificate(context_.get(), made.certificate.get());
  SSL_CTX_use_PrivateKey(context_.get(), made.key.get());
  constexpr std::array<unsigned char, 4> kName = {'t', 'e', 's', 't'};
  if (identity.wantsCertificate) {
    X509_STORE_add_cert(SSL_CTX_get_cert_store(context_.get()), Authority().certificate.get());
    SSL_CTX_set_verify(context_.get(), SSL_VERIFY_PEER | SSL_VERIFY_FAIL_IF_NO_PEER_CERT, nullptr);
  }
  SSL_CTX_set_session_id_context(context_.get(), kName.data(), kName.size());
}

TlsEnd::TlsEnd(const TlsServer& server) : ssl_(SSL_new(server.Context()), SSL_free) {
  SSL_set_bio(ssl_.get(), BIO_new(BIO_s_mem()), BIO_new(BIO_s_mem()));
  SSL_set_accept_state(ssl_.get());
}

void TlsEnd::Feed(std::string_view bytes) {
  BIO_write(SSL_get_rbio(ssl_.get()), bytes.data(), static_cast<int>(bytes.size()));
}

bool TlsEnd::Shake() {
  return SSL_do_handshake(ssl_.get()) == 1;
}

std::string TlsEnd::Open() {
  std::string plain;
  std::array<char, 16384> block{};
  std::size_t got = 0;
  while (SSL_read_ex(ssl_.get(), block.data(), block.size(), &got) == 1)
    plain.append(block.data(), got);
  return plain;
}

void TlsEnd::Seal(std::string_view plain) {
  std::size_t written = 0;
  if (!plain.empty()) SSL_write_ex(ssl_.get(), plain.data(), plain.size(), &written);
}

void TlsEnd::SayEnd() {
  SSL_shutdown(ssl_.get());
}

std::string TlsEnd::Wire() {
  BIO* const out = SSL_get_wbio(ssl_.get());
  std::string bytes(BIO_ctrl_pending(out), '\0');
  if (!bytes.empty()) BIO_read(out, bytes.data(), static_cast<int>(bytes.size()));
  return bytes;
}

}  // namespace corvane
