#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>

namespace corvane {

/// A checksum of a file's bytes; a stronger one has a larger number.
enum class DigestKind : std::uint8_t { None, Crc32, Md5, Sha1, Sha256, Sha512 };

/// Makes a checksum of bytes as they pass. One thread.
class Digest {
 public:
  /// None makes none: every call then does nothing.
  explicit Digest(DigestKind kind);
  ~Digest();
  Digest(const Digest&) = delete;
  Digest& operator=(const Digest&) = delete;

  void Add(std::span<const char> bytes);
  /// The checksum of all that was added, as bytes, a number's largest byte first; then it begins
  /// anew. Empty where this system's policy forbids that kind.
  [[nodiscard]] std::string Take();

 private:
  struct State;
  void Begin();

  const DigestKind kind_;
  std::unique_ptr<State> state_;
};

}  // namespace corvane
