#include "net/TlsStream.h"

#include <arpa/inet.h>
#include <openssl/err.h>
#include <openssl/ssl.h>
#include <openssl/x509v3.h>

#include <array>
#include <chrono>
#include <utility>

#include "net/HostName.h"
#include "net/PeerCertificate.h"

namespace corvane {
namespace {

constexpr std::size_t kMostOut = std::size_t{256} * 1024;

// As a certificate names it: the scope of an address is this machine's affair, and a last dot only
// says that the name is whole.
std::string bareHost(const std::string& host) {
  std::string bare = host;
  if (host.find(':') != std::string::npos) bare.resize(std::min(host.find('%'), host.size()));
  if (bare.size() > 1 && bare.ends_with('.')) bare.pop_back();
  return asciiHost(bare);
}

}  // namespace

void TlsStream::Free::operator()(ssl_st* ssl) const {
  SSL_free(ssl);
}

TlsStream::TlsStream(std::shared_ptr<const TlsContext> context, Stream& below)
    : context_(std::move(context)), below_(below), ssl_(SSL_new(context_->get())) {
  BIO* const bio = ssl_ ? BIO_new(method()) : nullptr;
  if (bio == nullptr) throw NLException("TlsStream::TlsStream", "SSL_new() failed: Out of memory");
  BIO_set_data(bio, this);
  BIO_set_init(bio, 1);
  SSL_set_bio(ssl_.get(), bio, bio);
  SSL_set_app_data(ssl_.get(), this);
  SSL_set_verify(ssl_.get(), SSL_VERIFY_PEER, noteProblem);
}

// A connection that is broken off would take its session with it, which others still resume.
TlsStream::~TlsStream() {
  SSL_set_shutdown(ssl_.get(), SSL_SENT_SHUTDOWN | SSL_RECEIVED_SHUTDOWN);
}

const bio_method_st* TlsStream::method() {
  static const BIO_METHOD* const kMethod = [] {
    BIO_METHOD* const made = BIO_meth_new(BIO_get_new_index() | BIO_TYPE_SOURCE_SINK, "stream");
    BIO_meth_set_read_ex(made, readBelow);
    BIO_meth_set_write_ex(made, writeBelow);
    BIO_meth_set_ctrl(made, control);
    return made;
  }();
  return kMethod;
}

// Exceptions do not pass through OpenSSL: they are kept until its call has returned.
int TlsStream::readBelow(bio_st* bio, char* buffer, std::size_t size, std::size_t* got) {
  auto& self = *static_cast<TlsStream*>(BIO_get_data(bio));
  BIO_clear_retry_flags(bio);
  *got = 0;
  try {
    self.flush();
    if (!self.patient_ && !self.below_.wait(0)) {
      BIO_set_retry_read(bio);
      return 0;
    }
    *got = self.below_.read({buffer, size});
    self.endBelow_ = *got == 0;
    return *got > 0 ? 1 : 0;
  } catch (const NLException& error) {
    self.failure_ = error;
    return 0;
  }
}

int TlsStream::writeBelow(bio_st* bio, const char* bytes, std::size_t size, std::size_t* written) {
  auto& self = *static_cast<TlsStream*>(BIO_get_data(bio));
  BIO_clear_retry_flags(bio);
  *written = 0;
  try {
    self.out_.append(bytes, size);
    if (self.out_.size() >= kMostOut) self.flush();
    *written = size;
    return 1;
  } catch (const NLException& error) {
    self.failure_ = error;
    return 0;
  }
}

long TlsStream::control(bio_st* bio, int command, long /*number*/, void* /*pointer*/) {
  switch (command) {
    case BIO_CTRL_FLUSH: return 1;
    case BIO_CTRL_EOF: return static_cast<TlsStream*>(BIO_get_data(bio))->endBelow_ ? 1 : 0;
    default: return 0;
  }
}

// Every check goes on, so that all that does not fit is known.
int TlsStream::noteProblem(int fits, x509_store_ctx_st* chain) {
  if (fits == 1) return 1;
  const auto* const ssl = static_cast<const SSL*>(
      X509_STORE_CTX_get_ex_data(chain, SSL_get_ex_data_X509_STORE_CTX_idx()));
  auto& self = *static_cast<TlsStream*>(SSL_get_app_data(ssl));
  self.certificate_.problems |= problemOf(X509_STORE_CTX_get_error(chain));
  return 1;
}

void TlsStream::expect(const std::string& host) {
  SSL* const ssl = ssl_.get();
  const bool set = isAddress(host)
                       ? X509_VERIFY_PARAM_set1_ip_asc(SSL_get0_param(ssl), host.c_str()) == 1
                       : SSL_set1_host(ssl, host.c_str()) == 1 &&
                             SSL_set_tlsext_host_name(ssl, host.c_str()) == 1;
  // Without a name to compare, every certificate would fit.
  if (!set || host.empty())
    throw NLException("TlsStream::handshake()", "SSL_set1_host() failed: " + host);
}

bool TlsStream::handshake(const std::string& host, const TlsStream* session, long milliseconds,
                          const std::function<bool()>& goOn) {
  using std::chrono::steady_clock;
  constexpr char kFunction[] = "TlsStream::handshake()";
  constexpr long kSlice = 50;
  const auto deadline = steady_clock::now() + std::chrono::milliseconds(milliseconds);
  SSL* const ssl = ssl_.get();
  host_ = bareHost(host);
  expect(host_);
  if (session != nullptr) {
    SSL_SESSION* const resumed = SSL_get1_session(session->ssl_.get());
    if (resumed != nullptr) SSL_set_session(ssl, resumed);
    SSL_SESSION_free(resumed);
  }
  patient_ = false;
  while (!carryOut(kFunction, [ssl] { return SSL_connect(ssl); })) {
    if (end_ != End::Open) {
      throw NLException(kFunction, "SSL_connect() failed: The server closed the connection");
    }
    if (!goOn()) return false;
    if (steady_clock::now() > deadline)
      throw NLException(kFunction, "SSL_connect() failed: The server does not answer");
    (void)below_.wait(kSlice);
  }
  patient_ = true;
  const std::uint32_t problems = certificate_.problems;
  if (X509* const shown = SSL_get0_peer_certificate(ssl)) certificate_ = readCertificate(shown);
  certificate_.problems = problems;
  return true;
}

bool TlsStream::carryOut(const char* function, const std::function<int()>& call) {
  if (end_ == End::Failed) throw NLException(*failure_);
  if (end_ != End::Open) return false;
  ERR_clear_error();
  const int result = call();
  const int error = SSL_get_error(ssl_.get(), result);
  if (!failure_) {
    try {
      flush();
    } catch (const NLException& below) {
      // What has come already is read all the same.
      if (error != SSL_ERROR_NONE && error != SSL_ERROR_ZERO_RETURN) failure_ = below;
    }
  }
  if (error == SSL_ERROR_NONE) return true;
  if (error == SSL_ERROR_WANT_READ && !failure_) return false;
  if (error == SSL_ERROR_ZERO_RETURN) {
    end_ = End::Ended;
  } else if (!failure_ && endBelow_) {
    end_ = End::Cut;
  } else {
    end_ = End::Failed;
    if (!failure_) failure_ = failure(function);
    throw NLException(*failure_);
  }
  return false;
}

NLException TlsStream::failure(const char* function) const {
  const char* const words = ERR_reason_error_string(ERR_peek_error());
  return {function, std::string("SSL failed: ") + (words != nullptr ? words : "not understood")};
}

std::string TlsStream::protocol() const {
  return SSL_version(ssl_.get()) == TLS1_3_VERSION ? "TLS 1.3" : "TLS 1.2";
}

std::string TlsStream::cipher() const {
  return SSL_get_cipher_name(ssl_.get());
}

bool TlsStream::isResumed() const {
  return SSL_session_reused(ssl_.get()) == 1;
}

std::size_t TlsStream::readOnce(std::span<char> buffer) {
  std::size_t got = 0;
  const bool read = carryOut("TlsStream::read()", [&] {
    return SSL_read_ex(ssl_.get(), buffer.data(), buffer.size(), &got);
  });
  return read ? got : 0;
}

// One record holds 16 KiB at most: what has come with it is taken as well.
std::size_t TlsStream::read(std::span<char> buffer) {
  if (end_ == End::Failed) throw NLException(*failure_);
  patient_ = true;
  std::size_t count = 0;
  while (count == 0 && end_ == End::Open) count = readOnce(buffer);
  patient_ = false;
  try {
    while (count > 0 && count < buffer.size() && SSL_has_pending(ssl_.get()) == 1) {
      const std::size_t more = readOnce(buffer.subspan(count));
      if (more == 0) break;
      count += more;
    }
  } catch (const NLException&) {
    // The next call throws it; what came before counts.
  }
  patient_ = true;
  return count;
}

void TlsStream::write(std::span<const char> bytes) {
  constexpr char kFunction[] = "TlsStream::write()";
  if (bytes.empty()) return;
  std::size_t written = 0;
  if (end_ == End::Failed) throw NLException(*failure_);
  ERR_clear_error();
  const int result = SSL_write_ex(ssl_.get(), bytes.data(), bytes.size(), &written);
  if (result == 1) return flush();
  end_ = End::Failed;
  if (!failure_) failure_ = failure(kFunction);
  throw NLException(*failure_);
}

void TlsStream::flush() {
  if (out_.empty()) return;
  std::string out;
  out.swap(out_);
  below_.write(out);
  out.clear();
  out_.swap(out);  // its room is used again
}

bool TlsStream::wait(long milliseconds) {
  using std::chrono::steady_clock;
  const auto deadline = steady_clock::now() + std::chrono::milliseconds(milliseconds);
  patient_ = false;
  for (;;) {
    char first = 0;
    std::size_t got = 0;
    try {
      const bool there =
          carryOut("TlsStream::wait()", [&] { return SSL_peek_ex(ssl_.get(), &first, 1, &got); });
      if (there || end_ != End::Open) return true;
    } catch (const NLException&) {
      return true;  // the next read tells
    }
    const auto left =
        std::chrono::ceil<std::chrono::milliseconds>(deadline - steady_clock::now()).count();
    if (left <= 0 || !below_.wait(left)) return false;
  }
}

void TlsStream::sayEnd() {
  if (saidEnd_ || end_ == End::Failed || end_ == End::Cut) return;
  saidEnd_ = true;
  try {
    ERR_clear_error();
    (void)SSL_shutdown(ssl_.get());
    flush();
  } catch (const NLException&) {
    // Then it is gone, which the reading side tells.
  }
}

void TlsStream::finish() {
  constexpr long kPatience = 5'000;
  constexpr long kMoment = 300;
  sayEnd();
  if (endsTogether) drain(kMoment);
  below_.finish();
  drain(kPatience);
}

// Reads what still comes, until nothing has come for so many milliseconds.
void TlsStream::drain(long patience) {
  std::array<char, 4096> rest{};
  try {
    while (end_ == End::Open && wait(patience) && read(rest) > 0) continue;
  } catch (const NLException&) {
    // Nothing more is expected from there.
  }
}

}  // namespace corvane
