#include "util/Digest.h"

#include <openssl/evp.h>
#include <zlib.h>

#include <utility>

namespace corvane {
namespace {

using Context = std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)>;

const EVP_MD* AlgorithmOf(DigestKind kind) {
  switch (kind) {
    case DigestKind::Md5: return EVP_md5();
    case DigestKind::Sha1: return EVP_sha1();
    case DigestKind::Sha256: return EVP_sha256();
    case DigestKind::Sha512: return EVP_sha512();
    case DigestKind::None:
    case DigestKind::Crc32: break;
  }
  return nullptr;
}

}  // namespace

struct Digest::State {
  Context context{nullptr, &EVP_MD_CTX_free};  // of all kinds but CRC32
  unsigned long crc = 0;
};

Digest::Digest(DigestKind kind) : kind_(kind), state_(std::make_unique<State>()) {
  if (AlgorithmOf(kind) != nullptr) state_->context.reset(EVP_MD_CTX_new());
  Begin();
}

Digest::~Digest() = default;

void Digest::Begin() {
  state_->crc = ::crc32(0, nullptr, 0);
  const EVP_MD* const algorithm = AlgorithmOf(kind_);
  if (state_->context && EVP_DigestInit_ex(state_->context.get(), algorithm, nullptr) != 1)
    state_->context.reset();
}

void Digest::Add(std::span<const char> bytes) {
  if (state_->context) {
    (void)EVP_DigestUpdate(state_->context.get(), bytes.data(), bytes.size());
  } else if (kind_ == DigestKind::Crc32) {
    const auto* const first = reinterpret_cast<const unsigned char*>(bytes.data());
    state_->crc = ::crc32_z(state_->crc, first, bytes.size());
  }
}

std::string Digest::Take() {
  constexpr int kByte = 8;
  std::string digest;
  if (state_->context) {
    digest.resize(EVP_MAX_MD_SIZE);
    unsigned int size = 0;
    (void)EVP_DigestFinal_ex(state_->context.get(), reinterpret_cast<unsigned char*>(digest.data()),
                             &size);
    digest.resize(size);
  } else if (kind_ == DigestKind::Crc32) {
    for (int shift = 3 * kByte; shift >= 0; shift -= kByte)
      digest.push_back(static_cast<char>(state_->crc >> shift & 0xFF));
  }
  Begin();
  return digest;
}

}  // namespace corvane
