#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

namespace corvane {

/// A growing byte buffer: insert appends at the end, remove takes from the read position on.
/// Integers stand in network byte order, long ones in four bytes; float and double stand as the
/// machine has them. Every remove throws NLException, the read position unchanged, where too few
/// bytes are left. Not locked.
class NLPacket {
 public:
  /// The slack that every growth adds.
  static constexpr std::uint32_t kGrowBy = 128;

  explicit NLPacket(unsigned long initialSize = 0);

  void insert(char value);
  void insert(unsigned char value);
  void insert(short value);
  void insert(unsigned short value);
  void insert(int value);
  void insert(unsigned int value);
  void insert(long value);
  void insert(unsigned long value);
  void insert(float value);
  void insert(double value);
  /// The characters and their terminating zero; null is ignored.
  void insert(const char* text);
  /// Raw bytes; null is ignored.
  void insert(const void* bytes, unsigned long length);

  void remove(char& out);
  void remove(unsigned char& out);
  void remove(short& out);
  void remove(unsigned short& out);
  void remove(int& out);
  void remove(unsigned int& out);
  void remove(long& out);
  void remove(unsigned long& out);
  void remove(float& out);
  void remove(double& out);
  /// Copies at most `maximum` bytes, always terminated, and passes over the whole stored string.
  void remove(char* buffer, std::size_t maximum);
  void remove(void* buffer, std::size_t length);

  [[nodiscard]] const char* data() const { return data_.get(); }
  [[nodiscard]] std::uint32_t size() const { return size_; }
  [[nodiscard]] std::uint32_t capacity() const { return capacity_; }
  [[nodiscard]] std::uint32_t readPosition() const { return readPosition_; }

  /// Makes room for `more` bytes beyond the size.
  void p_growToHold(unsigned long more);
  /// True when at least `count` bytes are left to read.
  [[nodiscard]] bool p_verifySizeRemaining(unsigned long count) const;

 private:
  template <typename Value>
  void append(Value value);
  template <typename Value>
  [[nodiscard]] Value take(const char* label);
  void verify(unsigned long count, const char* label) const;

  std::uint32_t size_ = 0;
  std::uint32_t capacity_ = 0;
  std::uint32_t readPosition_ = 0;
  std::unique_ptr<char[]> data_;
};

}  // namespace corvane
